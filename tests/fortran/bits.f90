! Bit, shift and numeric routines through the module, where several differ from the
! compiler's intrinsics of the same names at the edges.
program bits_test
  use tarvo_portlib
  use tarvo_check
  implicit none
  integer(4) :: w, n
  integer(8) :: w8
  integer(2) :: a2, p2
  real(4) :: inf

  call check_int('lshift wraps counts from 32', lshift(1, 33), 2)
  call check_int('lshift beyond 63', lshift(1, 64), 0)
  call check_int('rshift is arithmetic', rshift(-8, 33), -4)
  call check_int('shiftr is logical', shiftr(-1, 28), 15)
  call check_int('shiftl of a negative count', shiftl(1, -1), 0)
  call check_int8('dshiftl', dshiftl(1_8, -1_8, 1_8), 3_8)
  call check_int8('dshiftr at 64', dshiftr(5_8, 7_8, 64_8), 5_8)
  call check_int8('dshiftr beyond 64', dshiftr(5_8, 7_8, 65_8), 0_8)

  w = 0
  n = 31
  call bis(n, w)
  call check_true('bit 31', bit(n, w) .and. w == -huge(w) - 1)
  call bis(32, w)
  call bic(-1, w)
  call check_int('positions outside the word', w, -huge(w) - 1)
  w8 = 0
  call bis(63, w8)
  call check_int8('biti8', biti8(63, w8), 1_8)
  call check_true('compllog', compllog(.false.) .and. .not. compllog(.true.))

  call check_int('jdim wraps', jdim(huge(w), -1), 0)
  call check_true('dim', dim(3.0, 1.0) == 2.0 .and. dim(1.0_8, 3.0_8) == 0)
  a2 = -7
  p2 = 3
  call check_int('jmod', jmod(a2, p2), -1)
  call check_int('short keeps two bytes', int(short(65537)), 1)
  inf = huge(inf)
  inf = inf * 2
  call check_true('besy0 of infinity', besy0(inf) == 0.0 .and. dbesy0(real(inf, 8)) == 0.0_8)
  call check_int('rindex', rindex('hello world', 'o'), 8)
  call check_int('rindex of an empty substring', rindex('abc', ''), 4)
  call checks_done('bits')
end program bits_test
