! RANDOM is reached through a binding label flang cannot declare: gfortran only.
! The random-number routines through the module: RAND, IRAND and SRAND are the library's,
! not the compiler's intrinsics of the same names.
program random_test
  use tarvo_portlib
  use tarvo_check
  implicit none
  integer(4) :: seed, saved, i
  real(4) :: x, first(10000)

  seed = 12345
  x = ran(seed)
  call check_int('ran', seed, 595905495)
  x = rand(1)
  call check_true('rand(1) restarts; random is rand', rand(1) == x .and. random(1) == x)
  call check_true('irand without a flag is reduced', all(abs([(irand(), i = 1, 1000)]) <= 32767))
  call srand(777)
  call ranget(saved)
  call check_int('srand seeds the shared sequence', saved, 777)

  ! The seed round trip continues the sequence exactly; RANSET is generic over REAL kinds.
  call ranset(42.9)
  x = rand()
  call ranget(saved)
  first = [(rand(), i = 1, 10000)]
  call iranset(saved)
  call check_true('sequence after the round trip', all(first == [(rand(), i = 1, 10000)]))
  call ranset(-5.7_8)
  call ranget(seed)
  call check_int('ranset of a REAL(8) truncates', seed, -5)
  call checks_done('random')
end program random_test
