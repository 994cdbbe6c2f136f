! Commands and environment, a QQ signal reaching a Fortran procedure, packed times with
! default-integer and INTEGER(2) parts.
module qq_system_handlers
  use, intrinsic :: iso_c_binding, only: c_intptr_t
  implicit none
  integer(4) :: last_number = 0, last_code = 0
contains
  integer(4) function on_signal(signum, detail)   ! both arguments by value
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
  integer(4) :: t
  integer(2) :: parts2(6)

  call check_true('SYSTEMQQ', systemqq('exit 3'))
  call check_int('RUNQQ', runqq('/bin/sh', '-c "exit 0"   '), 0)
  call check_true('SETENVQQ', setenvqq('TARVO_QQ_F=forty-two'))
  call check_int('GETENVQQ', getenvqq('TARVO_QQ_F', value), 8)
  call check_str('GETENVQQ value', value, 'forty-tw')
  call sleepqq(1)

  call check_int('SIGNALQQ', signalqq(SIG_USR1, on_signal), 0)
  call check_true('RAISEQQ SIG_USR3', raiseqq(SIG_USR3) == 0 .and. last_number == SIG_USR1)
  call check_int('SIGNALQQ FPE', signalqq(SIG_FPE, on_signal), 0)
  call check_true('RAISEQQ SIG_FPE', raiseqq(SIG_FPE) == 0 .and. last_number == SIG_FPE .and. last_code == -1)

  call check_true('TZ', setenvqq('TZ=UTC0'))
  call packtimeqq(t, 2024, 13, 1, 0, 0, 60)      ! carried over to 2025-01-01 00:01
  call check_int('PACKTIMEQQ default integers', t, 1735689660)
  call unpacktimeqq(t, parts2(1), parts2(2), parts2(3), parts2(4), parts2(5), parts2(6))
  call check_true('UNPACKTIMEQQ', all(parts2 == [2025_2, 1_2, 1_2, 0_2, 1_2, 0_2]))
  call unpacktimeqq(-1, parts2(1), parts2(2), parts2(3), parts2(4), parts2(5), parts2(6))
  call check_true('UNPACKTIMEQQ INTEGER(2)', all(parts2 == [1969_2, 12_2, 31_2, 23_2, 59_2, 59_2]))
  call packtimeqq(t, parts2(1), parts2(2), parts2(3), parts2(4), parts2(5), parts2(6))
  call check_int('PACKTIMEQQ INTEGER(2)', t, -1)
  call checks_done('qq_system')
end program qq_system
