! SIGNAL and ALARM through the module: a real signal sent to the program itself, then an
! alarm that fires on the library's timer thread while the program sleeps.
module signal_test_state
  implicit none
  integer :: last_number = 0, fired = 0
contains
  subroutine on_signal(signum)
    integer(4), intent(in) :: signum
    last_number = signum
  end subroutine on_signal

  subroutine on_alarm()
    fired = fired + 1
  end subroutine on_alarm
end module signal_test_state

program signal_test
  use tarvo_portlib
  use tarvo_check
  use signal_test_state
  implicit none
  integer(4), parameter :: SIGUSR1 = 10   ! the host's number
  integer(4) :: k

  ! Signals first, while the program has a single thread.
  call check_true('signal returns the default', signal(SIGUSR1, on_signal, SIGNAL_HANDLER) == 0)
  call check_int('kill', kill(getpid(), SIGUSR1), 0)
  call check_int('handler gets the number', last_number, SIGUSR1)
  call check_true('default returns the handler', signal(SIGUSR1, on_signal, SIGNAL_DEFAULT) > 1)

  ! Each poll goes through ALARM, whose lock orders it after the timer thread's call.
  call check_int('alarm', alarm(1, on_alarm), 0)
  call check_int('alarm while pending', alarm(10, on_alarm), 1)
  call sleep(2)
  do k = 1, 3
    if (alarm(0, on_alarm) == 0 .and. fired > 0) exit
    call sleep(1)
  end do
  call check_int('alarm fired once', fired, 1)
  call checks_done('signal')
end program signal_test
