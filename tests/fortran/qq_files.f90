! The QQ path and file routines through the module: build a directory, list it by
! wildcard, split and resolve names, change file times, clean up.
program qq_files
  use tarvo_qq
  use tarvo_check
  implicit none
  type(FILE_INFO) :: info
  type(FILE_INFOI8) :: info8
  integer(FILE_HANDLE_KIND) :: handle
  character(len=300) :: full, dir, found
  character(len=40) :: name, ext
  character(len=4) :: drive
  character(len=*), parameter :: files(3) = [character(len=18) :: &
    'qq_files.tmp/a.dat', 'qq_files.tmp/b.dat', 'qq_files.tmp/c.txt']
  character(len=*), parameter :: contents(3) = [character(len=13) :: 'alpha', 'bravo charlie', 'x']
  integer :: n, count, total, u

  call check_true('makedirqq', makedirqq('qq_files.tmp'))
  call check_false('makedirqq again', makedirqq('qq_files.tmp'))
  do n = 1, 3
    open (newunit=u, file=files(n), status='replace', access='stream')
    write (u) trim(contents(n))
    close (u)
  end do

  ! Every match once, with its size; then the normal end.
  handle = FILE_FIRST
  count = 0
  total = 0
  do
    n = getfileinfoqq('qq_files.tmp/*.dat', info, handle)
    if (handle == FILE_LAST .or. handle == FILE_ERROR) exit
    count = count + 1
    total = total + info%length
    call check_int('permit of ' // info%name(1:n), info%permit, 0)
  end do
  call check_int('getfileinfoqq matches', count, 2)
  call check_int('getfileinfoqq sizes', total, 18)
  call check_true('getfileinfoqq ends normally', handle == FILE_LAST)

  call check_true('setfiletimeqq', setfiletimeqq('qq_files.tmp/a.dat', 86400))
  handle = FILE_FIRST
  n = getfileinfoqq('qq_files.tmp/a.dat', info8, handle)
  call check_str('getfileinfoqqi8 name', info8%name(1:n), 'a.dat')
  call check_int8('getfileinfoqqi8 length', transfer(info8%length, 0_8), 5_8)
  call check_int('getfileinfoqqi8 lastwrite', info8%lastwrite, 86400)
  n = getfileinfoqq('qq_files.tmp/a.dat', info8, handle)
  call check_true('single match then the end', n == 0 .and. handle == FILE_LAST)
  handle = FILE_FIRST
  n = getfileinfoqq('no_such_dir/*', info, handle)
  call check_true('missing directory', handle == FILE_ERROR)

  n = splitpathqq('/usr/lib/libx.a', drive, dir, name, ext)
  call check_int('splitpathqq result', n, 9)
  call check_str('splitpathqq parts', drive // trim(dir) // trim(name) // '|' // ext, '    /usr/lib/libx|.a')
  n = fullpathqq('qq_files.tmp/../qq_files.tmp/c.txt', full)
  call check_true('fullpathqq', full(n - 18:n) == '/qq_files.tmp/c.txt' .and. full(1:1) == '/')
  n = findfileqq('c.txt', 'TARVO_QQ_FILES_PATH', found)
  call check_int('findfileqq without the file', n, 0)
  call check_int('findfileqq error', getlasterrorqq(), 2)
  n = findfileqq('qq_files.tmp/c.txt', 'TARVO_QQ_FILES_PATH', found)
  call check_str('findfileqq', found, 'qq_files.tmp/c.txt')
  call check_true('renamefileqq', renamefileqq('qq_files.tmp/c.txt', 'qq_files.tmp/c.dat'))
  call check_int('delfilesqq', delfilesqq('qq_files.tmp/*.dat'), 3)
  call check_true('deldirqq', deldirqq('qq_files.tmp'))
  call check_str('getdrivesqq', getdrivesqq(), ' ')
  call check_false('changedriveqq', changedriveqq('C'))
  call checks_done('qq_files')
end program qq_files
