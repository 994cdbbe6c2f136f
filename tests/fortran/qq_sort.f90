! SORTQQ and BSEARCHQQ through the module with LOC addresses and address-sized counts, and
! QSORT_II with a Fortran comparison function.
program qq_sort
  use tarvo_qq
  use tarvo_check
  implicit none
  integer(4) :: ints(7) = [5, -3, 9, 0, 9, -70000, 2], i
  integer(8) :: longs(3) = [3_8, -2_8**40, 0_8]
  integer(SRT_COUNT_KIND) :: n
  real(8) :: reals(3) = [2.5d0, -1d300, 1d-300]
  character(len=5) :: names(3) = ['delta', 'alpha', 'charl'], key5 = 'charl'
  integer(4), external :: compare_ints
  external :: qsort_ii

  n = 7
  call sortqq(loc(ints), n, SRT_INTEGER4)
  call check_true('SORTQQ INTEGER(4)', all(ints == [-70000, -3, 0, 2, 5, 9, 9]) .and. n == 7)
  n = 3
  call sortqq(loc(longs), n, SRT_INTEGER8)
  call check_true('SORTQQ INTEGER(8)', all(longs == [-2_8**40, 0_8, 3_8]))
  call sortqq(loc(reals), n, SRT_REAL8)
  call check_true('SORTQQ REAL(8)', all(reals == [-1d300, 1d-300, 2.5d0]))
  call sortqq(loc(names), n, len(names))
  call check_str('SORTQQ CHARACTER(5)', names(1)//names(2)//names(3), 'alphacharldelta')
  call sortqq(loc(reals), n, 458752)   ! there is no code Z'70000'
  call check_true('SORTQQ bad code', n == 0 .and. getlasterrorqq() == 22)
  do i = 1, 7
    call check_int('BSEARCHQQ', ints(bsearchqq(loc(ints(i)), loc(ints), size(ints, kind=SRT_COUNT_KIND), SRT_INTEGER4)), ints(i))
  end do
  call check_int('BSEARCHQQ CHARACTER(5)', int(bsearchqq(loc(key5), loc(names), 3_SRT_COUNT_KIND, 5)), 2)
  ints = [4, 1, 3, 2, 7, 6, 5]
  call qsort_ii(ints, 7, 4, compare_ints)
  call check_true('QSORT_II', all(ints == [1, 2, 3, 4, 5, 6, 7]))
  call checks_done('qq_sort')
end program qq_sort

integer(4) function compare_ints(a, b)
  integer(4), intent(in) :: a, b
  compare_ints = a - b
end function compare_ints
