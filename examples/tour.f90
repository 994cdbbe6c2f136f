! A short tour of what a Fortran program sees through the Tarvo portability library.
! Build and run it with scripts/tour.
program tour
  use tarvo
  implicit none

  call heading('Tarvo Fortran portability library: a tour')
  call show_library()
  call show_files()
  call show_terminal()
  call show_posix()

contains

  subroutine heading(title)
    character(len=*), intent(in) :: title
    print '(/,a,/,a)', title, repeat('-', len(title))
  end subroutine heading

  subroutine item(label, value)
    character(len=*), intent(in) :: label, value
    print '(2x,a,t28,a)', label, value
  end subroutine item

  function str(i) result(s)
    integer, intent(in) :: i
    character(len=12) :: s
    write (s, '(i0)') i
  end function str

  subroutine show_library()
    character(len=200) :: text
    character(len=4096) :: cwd
    integer :: rc, t
    rc = for_lodrik_version(text)
    do t = 1, len_trim(text)
      if (text(t:t) == achar(9)) text(t:t) = ' '
    end do
    call item('library', trim(text))
    rc = getcwd(cwd)
    call item('working directory', trim(cwd))
  end subroutine show_library

  subroutine show_files()
    character(len=*), parameter :: scratch = 'tour-scratch.txt'
    integer :: rc
    call heading('Files')
    call item('access /etc/passwd "r"', 'result ' // trim(str(access('/etc/passwd', 'r'))))
    call item('access /no/such/file', 'result ' // trim(str(access('/no/such/file', 'r'))) // &
              ' (missing files answer 22)')
    open (20, file=scratch, status='replace')
    write (20, '(a)') 'scratch'
    close (20)
    rc = chmod(scratch, '644')
    call item('chmod 644', 'result ' // trim(str(rc)) // ', execute access ' // &
              trim(str(access(scratch, 'x'))))
    rc = chmod(scratch, 'u+x')
    call item('chmod u+x', 'result ' // trim(str(rc)) // ', execute access ' // &
              trim(str(access(scratch, 'x'))))
    rc = chmod(scratch, 'u+z')
    call item('chmod u+z', 'result ' // trim(str(rc)) // ' (not a mode)')
    rc = unlink(scratch)
    call item('unlink', 'result ' // trim(str(rc)))
    rc = unlink(scratch)
    call item('unlink again', 'result ' // trim(str(rc)) // ', ierrno ' // trim(str(ierrno())))
  end subroutine show_files

  subroutine show_terminal()
    call heading('Terminal')
    if (isatty(6)) then
      call item('standard output', 'a terminal, ' // trim(ttynam(6)))
    else
      call item('standard output', 'not a terminal')
    end if
  end subroutine show_terminal

  subroutine show_posix()
    integer :: ival, ierror, jstat, jcopy, ilen
    integer(8) :: size
    character(len=40) :: name
    call heading('POSIX binding')
    ! Constants by name, with this system's values.
    call pxfconst('SIGUSR1', ival, ierror)
    call item('pxfconst SIGUSR1', trim(str(ival)) // ', ierror ' // trim(str(ierror)))
    call item('ipxfconst o_creat', str(ipxfconst('o_creat')))
    call pxfconst('NO_SUCH_NAME', ival, ierror)
    call item('pxfconst NO_SUCH_NAME', trim(str(ival)) // ', ierror ' // trim(str(ierror)) // ' (ENONAME)')
    ! A structure instance, its fields by name, a copy, and the end of both.
    jstat = 0
    jcopy = 0
    call pxfstructcreate('stat', jstat, ierror)
    call pxfstructcreate('stat', jcopy, ierror)
    call pxfint8set(jstat, 'st_size', 5000000000_8, ierror)
    call pxfintget(jstat, 'st_size', ival, ierror)
    call item('5 GB st_size as INTEGER', 'ierror ' // trim(str(ierror)) // ' (ERANGE: use pxfint8get)')
    call pxfstructcopy('stat', jstat, jcopy, ierror)
    call pxfint8get(jcopy, 'st_size', size, ierror)
    write (name, '(i0)') size
    call item('copied st_size', trim(name))
    call pxfstructfree(jcopy, ierror)
    call pxfstructfree(jstat, ierror)
    call item('handle after free', str(jstat))
    call pxfstructcreate('passwd', jstat, ierror)
    call pxfstrset(jstat, 'pw_shell', '/bin/sh   ', 0, ierror)
    call pxfstrget(jstat, 'pw_shell', name, ilen, ierror)
    call item('pw_shell', trim(name) // ' (' // trim(str(ilen)) // ' characters)')
    call pxfstructfree(jstat, ierror)
  end subroutine show_posix

end program tour
