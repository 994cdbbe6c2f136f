! Processes and signals through the tarvo_posix module: real children, real signals
! delivered to a handler written in Fortran.
module pxf_process_handlers
  implicit none
  integer(4), volatile :: last_signal = 0
contains
  subroutine on_signal(isig)
    integer(4), intent(in) :: isig
    last_signal = isig
  end subroutine on_signal
end module pxf_process_handlers

program pxf_process
  use tarvo_posix
  use tarvo_portlib, only: getpid
  use tarvo_check
  use pxf_process_handlers
  implicit none
  integer(4) :: ierror, ipid, istat, iretpid, jact, jset = 0, jold = 0, sigusr1, jhandler
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

  ! A Fortran handler receives the signal number.
  sigusr1 = ipxfconst('SIGUSR1')
  call pxfstructcreate(PXF_SIGACTION, jact, ierror)
  call pxfgetsubhandle(on_signal, jhandler, ierror)
  call pxfintset(jact, 'sa_handler', jhandler, ierror)
  call pxfsigaction(sigusr1, jact, 0, ierror)
  call check_int('sigaction', ierror, 0)
  call pxfkill(getpid(), sigusr1, ierror)
  call check_int('handler got SIGUSR1', last_signal, sigusr1)

  ! Blocked: pending, then delivered on unblock (the mask routine through its generic name).
  last_signal = 0
  call pxfstructcreate(PXF_SIGSET, jset, ierror)
  call pxfstructcreate(PXF_SIGSET, jold, ierror)
  call pxfsigaddset(jset, sigusr1, ierror)
  call pxfsigprocmask(ipxfconst('SIG_BLOCK'), jset, jold, ierror)
  call pxfkill(getpid(), sigusr1, ierror)
  call check_int('blocked', last_signal, 0)
  call pxfsigprocmask(ipxfconst('SIG_SETMASK'), jold, 0, ierror)
  call check_int('delivered on unblock', last_signal, sigusr1)

  call pxfstructfree(jact, ierror)
  call pxfstructfree(jset, ierror)
  call pxfstructfree(jold, ierror)
  call checks_done('pxf_process')
end program pxf_process
