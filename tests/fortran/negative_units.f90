! Negative unit numbers on gfortran units only: the ones no OPEN can connect answer exactly as
! an unconnected positive unit does, and units opened with NEWUNIT= work like any other.
program negative_units
  use tarvo_portlib
  use tarvo_posix, only: pxffileno, pxffflush, pxffseek, pxfftell, pxffgetc, pxffputc
  use tarvo_qq, only: flushqq, commitqq, getlasterrorqq
  use tarvo_check
  implicit none
  integer, parameter :: nanswers = 16
  integer :: reference(nanswers), got(nanswers), i, k, u
  character(len=1) :: ch
  ! The run-time numbers internal files from -10 downwards too, the same range as NEWUNIT=:
  ! after an internal WRITE, -10 and -11 name stream-less units that must still answer as
  ! unconnected units do.
  integer, parameter :: never_connected(6) = [-10, -11, -1, -2, -9, -huge(1)]
  character(len=12) :: label, text

  write (text, '(i5)') 42
  reference = answers(31)
  call same_as_reference(never_connected)

  open (newunit=u, status='scratch', access='stream', form='unformatted')
  call check_true('NEWUNIT gives a negative number', u < 0)
  call check_int('fputc on a NEWUNIT unit', fputc(u, 'x'), 0)
  call check_int('fputc again', fputc(u, 'y'), 0)
  call check_int('ftell on a NEWUNIT unit', ftell(u), 2)
  call check_int('fseek on a NEWUNIT unit', fseek(u, 0, 0), 0)
  call check_int('fgetc on a NEWUNIT unit', fgetc(u, ch), 0)
  call check_str('the character written first', ch, 'x')
  call pxffileno(u, i, k)
  call check_int('pxffileno of a NEWUNIT unit', k, 0)
  call check_true('the unit has a real descriptor', i > 2)
  call check_true('commitqq on a NEWUNIT unit', commitqq(u))
  close (u)
  ! Closed, the number is free again; an internal file may take it next.
  write (text, '(i5)') 43
  call same_as_reference([u])
  call checks_done('negative_units')

contains

  subroutine same_as_reference(units)
    integer, intent(in) :: units(:)
    do k = 1, size(units)
      got = answers(units(k))
      do i = 1, nanswers
        label = 'answer ' // achar(iachar('a') + i - 1)
        call check_int(label, got(i), reference(i))
      end do
    end do
  end subroutine same_as_reference

  ! What every unit routine answers for IUNIT, in a fixed order.
  function answers(iunit) result(r)
    integer, intent(in) :: iunit
    integer :: r(nanswers)
    integer :: statb(13), fd, ierror
    character(len=1) :: c
    character(len=TTYNAM_LEN) :: tty
    r = 0
    r(1) = merge(1, 0, isatty(iunit))
    tty = ttynam(iunit)
    r(2) = merge(1, 0, tty == ' ')
    r(3) = fstat(iunit, statb)
    c = 'q'
    r(4) = fgetc(iunit, c)
    r(5) = fputc(iunit, 'z')
    r(6) = fseek(iunit, 0, 0)
    r(7) = ftell(iunit)
    r(8) = getpos(iunit)
    call flush(iunit)
    call flushqq(iunit)
    r(9) = merge(1, 0, commitqq(iunit))
    r(10) = getlasterrorqq()
    call pxffileno(iunit, fd, ierror)
    r(11) = ierror
    call pxffflush(iunit, r(12))
    call pxffseek(iunit, 0, 0, r(13))
    fd = 0
    call pxfftell(iunit, fd, r(14))
    call pxffgetc(iunit, c, r(15))
    call pxffputc(iunit, 'z', r(16))
  end function answers
end program negative_units
