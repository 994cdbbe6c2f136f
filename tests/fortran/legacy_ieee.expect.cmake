set(EXPECT_EXIT_CODE 9)
set(EXPECT_STDERR "^handler 8 code 132\n$")
