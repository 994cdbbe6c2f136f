set(EXPECT_ABORT ON)
set(EXPECT_STDERR "^abort: from the test\n")
