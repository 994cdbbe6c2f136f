set(EXPECT_EXIT_CODE 7)
set(EXPECT_FILE pxf_fastexit.txt)
set(EXPECT_FILE_CONTENT "")
