set(EXPECT_EXIT_CODE 6)
set(EXPECT_FILE pxf_exit.txt)
set(EXPECT_FILE_CONTENT "written before exit\n")
