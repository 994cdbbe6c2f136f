set(EXPECT_EXIT_CODE 3)
set(EXPECT_FILE end_exit.txt)
set(EXPECT_FILE_CONTENT "written before exit\n")
