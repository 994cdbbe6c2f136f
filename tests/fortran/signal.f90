! SIGNAL with real signals sent to the program itself, then an ALARM that fires on the
! library's timer thread while the program sleeps.
module signal_test_state
  implicit none
  integer :: handled = 0, last_number = 0, fired = 0, wrong = 0
contains
  subroutine on_signal(signum)
    integer(4), intent(in) :: signum
    handled = handled + 1
    last_number = signum
  end subroutine on_signal

  subroutine on_alarm()
    fired = fired + 1
  end subroutine on_alarm

  subroutine wrong_alarm()
    wrong = wrong + 1
  end subroutine wrong_alarm
end module signal_test_state

program signal_test
  use tarvo_portlib
  use tarvo_check
  use signal_test_state
  implicit none
  integer(4), parameter :: SIGUSR1 = 10   ! the host's number: kill -l
  integer(SIGNAL_KIND) :: previous
  integer(4) :: k

  ! Signals first, while the program has a single thread.
  call check_true('signal installs over the default', signal(SIGUSR1, on_signal, SIGNAL_HANDLER) == 0)
  call check_int('kill', kill(getpid(), SIGUSR1), 0)
  call check_int('kill', kill(getpid(), SIGUSR1), 0)
  call check_int('handler stays installed', handled, 2)
  call check_int('handler gets the number', last_number, SIGUSR1)
  previous = signal(SIGUSR1, on_signal, SIGNAL_IGNORE)
  call check_true('previous disposition is the library''s handler', previous /= 0 .and. previous /= 1)
  call check_int('ignored', kill(getpid(), SIGUSR1) + handled, 2)
  call check_true('default back', signal(SIGUSR1, on_signal, SIGNAL_DEFAULT) == 1)
  call check_true('flag 5', signal(SIGUSR1, on_signal, 5) == 22)
  call check_true('signal 65', signal(65, on_signal, SIGNAL_HANDLER) == 22)
  call check_true('SIGKILL is refused', signal(9, on_signal, SIGNAL_DEFAULT) == -1)

  ! The alarm runs about a second later on another thread; a second request is ignored.
  ! Each poll goes through ALARM, whose lock orders it after the timer thread's call.
  call check_int('alarm 0 sets nothing', alarm(0, wrong_alarm), 0)
  call check_int('alarm', alarm(1, on_alarm), 0)
  call check_int('alarm while pending', alarm(10, wrong_alarm), 1)
  call sleep(2)
  do k = 1, 3
    if (alarm(0, wrong_alarm) == 0 .and. fired > 0) exit
    call sleep(1)
  end do
  call check_int('alarm fired once', fired, 1)
  call check_int('the ignored request never ran', wrong, 0)
  call checks_done('signal')
end program signal_test
