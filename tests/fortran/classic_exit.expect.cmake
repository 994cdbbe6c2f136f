set(EXPECT_EXIT_CODE 4)
set(EXPECT_FILE classic_exit.txt)
set(EXPECT_FILE_CONTENT "written before exit\n")
