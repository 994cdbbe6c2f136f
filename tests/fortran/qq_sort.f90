! SORTQQ and BSEARCHQQ through the module's generics, with the count and length kinds real
! programs pass, and QSORT with a Fortran comparison function.
program qq_sort
  use tarvo_qq
  use tarvo_check
  implicit none
  integer(4) :: ints(7) = [5, -3, 9, 0, 9, -70000, 2], n4, i
  integer(8) :: longs(5) = [3_8, -2_8**40, 7_8, 0_8, 2_8**40], n8
  integer(2) :: shorts(4) = [int(300, 2), -1_2, 0_2, int(-300, 2)]
  real(8) :: reals(4) = [2.5d0, -1d300, 0d0, 1d-300]
  real(4) :: key4, singles(3) = [3.0, 1.0, 2.0]
  character(len=5) :: names(4) = ['delta', 'alpha', 'charl', 'bravo'], key5
  integer(4), external :: compare_ints
  external :: qsort_ii

  n4 = 7
  call sortqq(loc(ints), n4, SRT_INTEGER4)
  call check_true('SORTQQ INTEGER(4)', all(ints == [-70000, -3, 0, 2, 5, 9, 9]) .and. n4 == 7)
  n8 = 5
  call sortqq(loc(longs), n8, SRT_INTEGER8)
  call check_true('SORTQQ INTEGER(8)', all(longs == [-2_8**40, 0_8, 3_8, 7_8, 2_8**40]))
  n4 = 4
  call sortqq(loc(shorts), n4, SRT_INTEGER2)
  call check_true('SORTQQ INTEGER(2)', all(shorts == [int(-300, 2), -1_2, 0_2, int(300, 2)]))
  call sortqq(loc(reals), n4, SRT_REAL8)
  call check_true('SORTQQ REAL(8)', all(reals == [-1d300, 0d0, 1d-300, 2.5d0]))
  call sortqq(loc(names), n4, len(names))
  call check_str('SORTQQ CHARACTER(5)', names(1)//names(2)//names(3)//names(4), 'alphabravocharldelta')
  n4 = 3
  call sortqq(loc(singles), n4, SRT_REAL4)
  call check_true('SORTQQ REAL(4)', all(singles == [1.0, 2.0, 3.0]))
  n4 = 3
  call sortqq(loc(singles), n4, 458752)   ! no code 0x70000
  call check_int('SORTQQ bad code count', n4, 0)
  call check_int('SORTQQ bad code error', getlasterrorqq(), 22)

  ! Every element is found at an index holding its value; absent keys give 0.
  do i = 1, 7
    call check_int('BSEARCHQQ INTEGER(4)', ints(int(bsearchqq(loc(ints(i)), loc(ints), 7, SRT_INTEGER4))), ints(i))
  end do
  key4 = 2.5
  call check_int('BSEARCHQQ absent', int(bsearchqq(loc(key4), loc(singles), 3_8, SRT_REAL4)), 0)
  key5 = 'charl'
  call check_int('BSEARCHQQ CHARACTER(5)', int(bsearchqq(loc(key5), loc(names), 4, 5)), 3)

  ints = [4, 1, 3, 2, 7, 6, 5]
  call qsort_ii(ints, 7, 4, compare_ints)
  call check_true('QSORT_II', all(ints == [1, 2, 3, 4, 5, 6, 7]))
  call checks_done('qq_sort')
end program qq_sort

integer(4) function compare_ints(a, b)
  integer(4), intent(in) :: a, b
  compare_ints = a - b
end function compare_ints
