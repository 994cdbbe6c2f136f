! What only a Fortran program sees of the QQ file routines: the record types and handle
! kind of the module, the generic names, character outputs and LOGICAL results.
program qq_files
  use tarvo_qq
  use tarvo_check
  implicit none
  type(FILE_INFO) :: info
  type(FILE_INFOI8) :: info8
  integer(FILE_HANDLE_KIND) :: handle
  character(len=300) :: dir
  character(len=40) :: name, ext
  character(len=4) :: drive
  integer :: n, u, total

  call check_true('makedirqq', makedirqq('qq_files.tmp'))
  open (newunit=u, file='qq_files.tmp/a.dat', status='replace', access='stream')
  write (u) 'alpha'
  close (u)
  call check_true('setfiletimeqq', setfiletimeqq('qq_files.tmp/a.dat', 86400))
  handle = FILE_FIRST
  total = 0
  do
    n = getfileinfoqq('qq_files.tmp/?.dat', info, handle)
    if (handle == FILE_LAST .or. handle == FILE_ERROR) exit
    total = total + info%length
  end do
  call check_true('getfileinfoqq ends normally', handle == FILE_LAST .and. total == 5)
  handle = FILE_FIRST
  n = getfileinfoqq('qq_files.tmp/a.*', info8, handle)
  call check_str('getfileinfoqqi8 name', info8%name(1:n), 'a.dat')
  call check_int8('getfileinfoqqi8 length', transfer(info8%length, 0_8), 5_8)
  call check_true('getfileinfoqqi8 record', info8%lastwrite == 86400 .and. info8%permit == 0)
  n = splitpathqq('/usr/lib/libx.a', drive, dir, name, ext)
  call check_str('splitpathqq', drive // trim(dir) // trim(name) // '|' // ext, '    /usr/lib/libx|.a')
  call check_int('delfilesqq', delfilesqq('qq_files.tmp/*.dat'), 1)
  call check_true('deldirqq', deldirqq('qq_files.tmp') .and. .not. deldirqq('qq_files.tmp'))
  call check_str('getdrivesqq', getdrivesqq(), ' ')
  call checks_done('qq_files')
end program qq_files
