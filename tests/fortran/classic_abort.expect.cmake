set(EXPECT_ABORT ON)
set(EXPECT_STDERR "^abort: stopping here\n")
