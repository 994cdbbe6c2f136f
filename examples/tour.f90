! A short tour of what a Fortran program sees through the Tarvo portability library.
! Build and run it with scripts/tour.
program tour
  use tarvo
  implicit none

  call heading('Tarvo Fortran portability library: a tour')
  call show_library()
  call show_files()
  call show_terminal()

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

end program tour
