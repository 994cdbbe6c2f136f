! Processes and signals through the tarvo_posix module: real children, real signals
! delivered to a handler written in Fortran.
module pxf_process_handlers
  implicit none
  integer(4), volatile :: last_signal = 0, calls = 0
contains
  subroutine on_signal(isig)
    integer(4), intent(in) :: isig
    last_signal = isig
    calls = calls + 1
  end subroutine on_signal
end module pxf_process_handlers

program pxf_process
  use tarvo_posix
  use tarvo_check
  use pxf_process_handlers
  implicit none
  integer(4) :: ierror, ipid, istat, iretpid, jact, jset, jold, is, sigusr1, sigusr2, jhandler
  character(len=8) :: args(3)
  integer(4) :: lens(3) = 0

  ! Children: an exit status; an exec of a shell that ends by a signal.
  flush (6)
  call pxffork(ipid, ierror)
  if (ipid == 0) call pxfexit(3)
  call pxfwait(istat, iretpid, ierror)
  call check_true('exited 3', iretpid == ipid .and. pxfwifexited(istat) .and. ipxfwexitstatus(istat) == 3)

  args = [character(len=8) :: 'sh', '-c', 'kill $$']
  call pxffork(ipid, ierror)
  if (ipid == 0) then
    call pxfexecvp('sh', 0, args, lens, 3, ierror)
    call pxffastexit(100)
  end if
  call pxfwaitpid(ipid, istat, 0, iretpid, ierror)
  call check_true('terminated', pxfwifsignaled(istat) .and. ipxfwtermsig(istat) == ipxfconst('SIGTERM'))
  call pxfexecv('/no/such/program', 0, args, lens, 3, ierror)
  call check_int('exec missing', ierror, ipxfconst('ENOENT'))

  ! A Fortran handler; a signal blocked, pending, then delivered on unblock.
  sigusr1 = ipxfconst('SIGUSR1')
  sigusr2 = ipxfconst('SIGUSR2')
  call pxfstructcreate(PXF_SIGACTION, jact, ierror)
  call pxfstructcreate(PXF_SIGSET, jset, ierror)
  call pxfstructcreate(PXF_SIGSET, jold, ierror)
  call pxfgetsubhandle(on_signal, jhandler, ierror)
  call pxfintset(jact, 'sa_handler', jhandler, ierror)
  call pxfsigaction(sigusr1, jact, 0, ierror)
  call pxfsigaction(sigusr2, jact, 0, ierror)
  call check_int('sigaction', ierror, 0)
  call pxfkill(getpid(), sigusr1, ierror)
  call check_int('handler got SIGUSR1', last_signal, sigusr1)

  call pxfsigemptyset(jset, ierror)
  call pxfsigaddset(jset, sigusr2, ierror)
  call pxfsigprocmask(ipxfconst('SIG_BLOCK'), jset, jold, ierror)
  call pxfkill(getpid(), sigusr2, ierror)
  call pxfsigpending(jset, ierror)
  call pxfsigismember(jset, sigusr2, is, ierror)
  call check_true('pending, not delivered', is == 1 .and. calls == 1)
  call pxfsigprocmask(ipxfconst('SIG_SETMASK'), jold, 0, ierror)
  call check_true('delivered on unblock', calls == 2 .and. last_signal == sigusr2)

  call pxfstructfree(jact, ierror)
  call pxfstructfree(jset, ierror)
  call pxfstructfree(jold, ierror)
  call checks_done('pxf_process')
end program pxf_process
