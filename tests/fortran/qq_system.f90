! Commands, environment, QQ signals reaching a Fortran procedure, and packed times.
module qq_system_handlers
  use, intrinsic :: iso_c_binding, only: c_intptr_t
  implicit none
  integer(4) :: last_number = 0, last_code = 0
contains
  ! A QQ signal handler: both arguments by value.
  integer(4) function on_signal(signum, detail)
    integer(4), value :: signum
    integer(c_intptr_t), value :: detail
    last_number = signum
    last_code = int(detail, 4)
    on_signal = 0
  end function on_signal
end module qq_system_handlers

program qq_system
  use tarvo_qq
  use tarvo_check
  use qq_system_handlers
  implicit none
  character(len=8) :: value
  integer(4) :: t, year, month, day, hour, minute, second
  integer(2) :: parts(6)

  call check_true('SYSTEMQQ', systemqq('exit 3'))
  call check_int('RUNQQ', runqq('/bin/sh', '-c "exit 0"   '), 0)
  call check_int('RUNQQ failing', runqq('/bin/false', ''), -1)
  call check_true('SETENVQQ', setenvqq('TARVO_QQ_F=forty-two'))
  call check_int('GETENVQQ cut', getenvqq('TARVO_QQ_F', value), 8)
  call check_str('GETENVQQ value', value, 'forty-tw')
  call check_false('SETENVQQ without =', setenvqq('PATH'))
  call sleepqq(-5)

  call check_int('SIGNALQQ', signalqq(SIG_USR1, on_signal), 0)
  call check_int('RAISEQQ', raiseqq(SIG_USR3), 0)
  call check_int('handler number', last_number, SIG_USR1)
  call check_int('SIGNALQQ FPE', signalqq(SIG_FPE, on_signal), 0)
  call check_int('RAISEQQ FPE', raiseqq(SIG_FPE), 0)
  call check_true('FPE sub-code', last_number == SIG_FPE .and. last_code == -1)
  call check_int('SIGNALQQ unknown', signalqq(9, on_signal), -1)

  call check_true('TZ', setenvqq('TZ=UTC0'))
  call packtimeqq(t, 2024, 13, 1, 0, 0, 60)      ! default-integer parts, carried over
  call check_int('PACKTIMEQQ', t, 1735689660)
  call unpacktimeqq(t, year, month, day, hour, minute, second)
  call check_true('UNPACKTIMEQQ INTEGER(4)', all([year, month, day, hour, minute, second] == [2025, 1, 1, 0, 1, 0]))
  call unpacktimeqq(-1, parts(1), parts(2), parts(3), parts(4), parts(5), parts(6))
  call check_true('UNPACKTIMEQQ INTEGER(2)', all(parts == [1969_2, 12_2, 31_2, 23_2, 59_2, 59_2]))
  call checks_done('qq_system')
end program qq_system
