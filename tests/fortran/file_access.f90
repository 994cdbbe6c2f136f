! Tests the library on the program's OPEN units: gfortran units only.
! File access and naming through the tarvo_portlib module, on units opened with OPEN.
program file_access
  use tarvo_portlib
  use tarvo_qq, only: commitqq, getlasterrorqq
  use tarvo_check
  implicit none
  character(len=4096) :: home, here
  character(len=3) :: tiny
  character(len=120) :: text
  character(len=TTYNAM_LEN) :: tty
  integer :: rc

  call execute_command_line('rm -rf file_access.d && mkdir file_access.d')
  call check_int('getcwd', getcwd(home), 0)
  call check_int('chdir', chdir('file_access.d  '), 0)
  call check_int('getcwd after chdir', getcwd(here), 0)
  call check_str('getcwd names the new directory', here, trim(home) // '/file_access.d')

  open (10, file='data.txt', status='replace')
  write (10, '(a)') 'hello'

  ! access: granted, missing, malformed
  call check_int('access r', access('data.txt', 'r'), 0)
  call check_int('access blank mode', access('data.txt', ' '), 0)
  call check_int('access missing file', access('missing.txt', 'r'), 22)
  call check_int('ierrno after access', ierrno(), 22)
  call check_int('access bad mode', access('data.txt', 'rq'), 22)

  ! chmod: the execute bit is the one root cannot bypass
  call check_int('chmod u+x', chmod('data.txt', 'u+x'), 0)
  call check_int('access x after u+x', access('data.txt', 'x'), 0)
  call check_int('chmod a-x', chmod('data.txt', 'a-x'), 0)
  call check_int('access x after a-x', access('data.txt', 'x'), 13)
  call check_int('chmod octal', chmod('data.txt', '644'), 0)
  call check_int('chmod 0 refused', chmod('data.txt', '0'), 22)

  ! units: one opened by OPEN is known to the library, an unopened one is not
  call check_false('isatty of a file unit', isatty(10))
  tty = ttynam(10)
  call check_str('ttynam of a file unit', tty, ' ')
  call check_int('errno after ttynam of a file unit', getlasterror(), 25)
  tty = ttynam(99)
  call check_int('errno after ttynam of a closed unit', getlasterrorqq(), 9)
  call check_true('commitqq of an open unit', commitqq(10))
  call check_false('commitqq of a closed unit', commitqq(99))
  close (10)

  ! rename and unlink; the last failure stays in ierrno
  call check_int('rename', rename('data.txt', 'moved.txt'), 0)
  call check_int('access renamed', access('moved.txt', ' '), 0)
  call check_int('unlink', unlink('moved.txt'), 0)
  call check_int('unlink again', unlink('moved.txt'), 2)
  call check_int('ierrno keeps ENOENT', ierrno(), 2)
  call check_int('access still succeeds', access('.', 'rx'), 0)
  call check_int('ierrno unchanged by success', ierrno(), 2)

  ! getcwd into a too short argument
  tiny = 'xyz'
  call check_int('getcwd too short', getcwd(tiny), 34)
  call check_str('getcwd too short leaves blanks', tiny, '   ')

  ! strings and version
  call check_int('lnblnk', lnblnk('a b  '), 3)
  call check_int('lnblnk of blanks', lnblnk('    '), 0)
  rc = for_lodrik_version(text)
  call check_int('for_lodrik_version result', rc, 3)
  call check_str('version title', text(1:33), 'Tarvo Fortran portability library')

  call check_int('chdir back', chdir(home), 0)
  call execute_command_line('rm -rf file_access.d')
  call checks_done('file_access')
end program file_access
