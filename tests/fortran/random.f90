! The random-number routines through the module: RAND, IRAND and SRAND are the library's,
! not the compiler's intrinsics of the same names.
program random_test
  use tarvo_portlib
  use tarvo_check
  implicit none
  integer(4) :: seed, saved, i, k
  real(4) :: first(10000), x

  seed = 12345
  x = ran(seed)
  call check_int('ran seed', seed, 595905495)
  call check_true('ran value', abs(x - 0.2774901) < 1.0e-6)

  ! FLAG 1 restarts the shared sequence; every drawing entry reads the same sequence.
  x = rand(1)
  call check_true('rand(1) twice', rand(1) == x)
  call check_true('random(1)', random(1) == x)
  call check_true('rand without argument continues', rand() /= x)
  call srand(777)
  k = irand(0)
  call iranset(777)
  call check_int('srand seeds the shared sequence', irand(0), k)
  call check_true('irand with a flag is not reduced', any([(irand(0), i = 1, 100)] > 32767))
  call check_true('irand without a flag is reduced', all(abs([(irand(), i = 1, 1000)]) <= 32767))

  ! The seed round trip continues the sequence exactly.
  call ranset(42.9)
  call ranget(saved)
  first = [(rand(), i = 1, 10000)]
  call drand_sink(drand(0))
  call iranset(saved)
  call check_true('sequence after the round trip', all(first == [(rand(), i = 1, 10000)]))
  call ranset(42.0_8)
  call iranget(k)
  call check_int('REAL seeds truncate toward zero', k, saved)
  call checks_done('random')
contains
  subroutine drand_sink(d)
    real(8), intent(in) :: d
    if (d < 0 .or. d >= 1) call check_true('drand in [0, 1)', .false.)
  end subroutine drand_sink
end program random_test
