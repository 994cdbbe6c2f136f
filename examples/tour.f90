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
  call show_posix_files()

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

  subroutine show_posix_files()
    character(len=*), parameter :: dir = 'tour-pxf.d'
    integer :: ierror, fd, n, i, idirid, jdirent, jstat, ilen
    integer(8) :: size
    character(len=64) :: name
    character(len=32) :: text
    call heading('POSIX files and directories')
    call pxfmkdir(dir, 0, int(o'755'), ierror)
    call item('pxfmkdir ' // dir, 'ierror ' // trim(str(ierror)))
    ! Three files written through descriptors; names are blank padded, ILEN 0 trims them.
    do i = 1, 3
      write (name, '(a,"/file",i0,".txt")') dir, i
      call pxfopen(name, 0, ipxfconst('O_CREAT') + ipxfconst('O_WRONLY'), int(o'644'), fd, ierror)
      write (text, '("line ",i0,a)') i, achar(10)
      call pxfwrite(fd, text, len_trim(text) * i, n, ierror)
      call pxfclose(fd, ierror)
    end do
    ! The directory listed through a stream handle, each file's size through a "stat" instance.
    jdirent = 0
    jstat = 0
    call pxfstructcreate('dirent', jdirent, ierror)
    call pxfstructcreate('stat', jstat, ierror)
    call pxfopendir(dir, 0, idirid, ierror)
    do
      call pxfreaddir(idirid, jdirent, ierror)
      if (ierror /= 0) exit
      call pxfstrget(jdirent, 'd_name', name, ilen, ierror)
      call pxfstat(dir // '/' // name(1:ilen), 0, jstat, ierror)
      call pxfint8get(jstat, 'st_size', size, ierror)
      write (text, '(i0," bytes")') size
      call item('  ' // name(1:ilen), trim(text))
      if (name(1:1) /= '.') call pxfunlink(dir // '/' // name(1:ilen), 0, ierror)
    end do
    ! The end reports EENDDIR (128), or an error number an earlier call left in errno.
    if (ierror == EENDDIR) then
      call item('end of the listing', 'ierror 128 (EENDDIR)')
    else
      call item('end of the listing', 'ierror ' // trim(str(ierror)) // ' (left in errno by an earlier call)')
    end if
    call pxfclosedir(idirid, ierror)
    call pxfrmdir(dir, 0, ierror)
    call item('pxfrmdir after unlinking', 'ierror ' // trim(str(ierror)))
    call pxffileno(6, fd, ierror)
    call item('pxffileno of unit 6', 'descriptor ' // trim(str(fd)))
    call pxfstructfree(jstat, ierror)
    call pxfstructfree(jdirent, ierror)
  end subroutine show_posix_files

end program tour
