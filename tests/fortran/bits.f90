! Bit, shift and numeric routines through the module: the generics reach the library's
! routines, which differ from the compiler's intrinsics of the same names at the edges.
program bits_test
  use tarvo_portlib
  use tarvo_check
  use, intrinsic :: ieee_arithmetic, only: ieee_value, ieee_positive_inf
  implicit none
  integer(4) :: w = 0
  integer(8) :: w8 = 0
  integer(2) :: a2 = -7, p2 = 3
  real(4) :: inf

  call check_int('lshift wraps counts from 32', lshift(1, 33), 2)
  call check_int('rshift is arithmetic', rshift(-8, 33), -4)
  call check_int('shiftl of a negative count', shiftl(1, -1), 0)
  call check_int8('dshiftl', dshiftl(1_8, -1_8, 1_8), 3_8)
  call check_int8('dshiftr beyond 64', dshiftr(5_8, 7_8, 65_8), 0_8)
  call bis(31, w)
  call bis(63, w8)
  call check_true('bis and bit in both kinds', bit(31, w) .and. biti8(63, w8) == 1 .and. w8 < 0)
  call check_true('compllog', compllog(.false.) .and. .not. compllog(.true.))
  call check_int('jdim wraps', jdim(huge(w), -1), 0)
  call check_true('dim in both REAL kinds', dim(3.0, 1.0) == 2.0 .and. dim(1.0_8, 3.0_8) == 0)
  call check_int('jmod of INTEGER(2)', jmod(a2, p2), -1)
  call check_int('short keeps two bytes', int(short(65537)), 1)
  inf = ieee_value(inf, ieee_positive_inf)
  call check_true('besy0 of infinity', besy0(inf) == 0.0 .and. besy0(real(inf, 8)) == 0.0_8)
  call check_int('rindex of an empty substring', rindex('abc', ''), 4)
  call checks_done('bits')
end program bits_test
