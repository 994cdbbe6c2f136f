! Code in the style of existing programs, changed only to USE the library: dollar-sign
! constants, INTEGER(2) and INTEGER(4) arguments where the routines take other kinds,
! CTIME(TIME()), INFO%LENGTH as one INTEGER(8), NARGS and the three-argument GETARG,
! status arrays of 12 elements, and the error texts.
program dropin_legacy
  use tarvo
  use tarvo_check
  implicit none
  type(FILE$INFOI8) :: info8
  type(FILE$INFO) :: info
  integer(4) :: handle4, statb(12), n, u
  integer(8) :: handle8, big(12)
  integer(2) :: argn, status
  character(len=256) :: word, text
  character(len=24) :: when
  character(len=300) :: drivedir
  integer(4) :: cw4, saved_cw
  integer(2) :: cw2
  integer(4) :: values(5) = [4, -1, 3, 0, 2], count4

  open (newunit=u, file='dropin_legacy.dat', status='replace', access='stream')
  write (u) 'twelve bytes'
  close (u)

  handle4 = FILE$FIRST
  n = getfileinfoqq('dropin_legacy.d?t', info8, handle4)
  call check_int8('info%length', info8%length, 12_8)
  call check_str('info%name', info8%name(1:n), 'dropin_legacy.dat')
  n = getfileinfoqq('dropin_legacy.d?t', info8, handle4)
  call check_true('search ends with FILE$LAST', n == 0 .and. handle4 == FILE$LAST)
  handle8 = FILE$FIRST
  n = getfileinfoqq('dropin_legacy.dat', info, handle8)
  call check_int('4-byte record, 8-byte handle', info%length, 12)
  call check_true('no such file gives FILE$ERROR or FILE$LAST', &
                  getfileinfoqq('no/such/dir/*', info, handle8) == 0)

  call check_int('stat into 12 elements', stat('dropin_legacy.dat', statb), 0)
  call check_int('size from the 12-element array', statb(8), 12)
  call check_int('stati8 into 12 elements', stat('dropin_legacy.dat', big), 0)
  call check_int8('size from the 8-byte array', big(8), 12_8)

  when = ctime(time())
  call check_true('ctime(time()) has the year', when(21:22) == '20')
  call time_text(word)
  call check_true('time_text gives hh:mm:ss', word(3:3) == ':' .and. word(6:6) == ':')

  call check_int('nargs counts the command', nargs(), command_argument_count() + 1)
  argn = 0
  call getarg(argn, word, status)
  call check_true('getarg 0 is the command', status > 0 .and. index(word, 'dropin_legacy') > 0)
  argn = 5
  call getarg(argn, word, status)
  call check_true('a missing argument gives -1 and blanks', status == -1 .and. word == ' ')
  call getarg(0, word)
  call check_true('two-argument getarg', index(word, 'dropin_legacy') > 0)

  call tarvo_errtext(ENOHANDLE, text)
  call check_true('the library''s own code has its own text', index(text, 'handle') > 0)
  call tarvo_errtext(ERR$NOENT, text)
  call check_true('a system number has the system''s text', index(text, 'No such file') > 0)
  call check_int('chdir to nowhere', chdir('no/such/dir'), ERR$NOENT)
  call gerror(text)
  call check_true('gerror reads the last classic error', index(text, 'No such file') > 0)

  count4 = 5
  call sortqq(loc(values), count4, SRT$INTEGER4)
  call check_true('sortqq with a default-integer count', all(values == [-1, 0, 2, 3, 4]))
  call check_true('bsearchqq with a default-integer length', &
                  bsearchqq(loc(values(4)), loc(values), 5, SRT$INTEGER4) == 4)

  drivedir = FILE$CURDRIVE
  call check_true('getdrivedirqq of the current drive', getdrivedirqq(drivedir) > 0 .and. drivedir(1:1) == '/')

  call getcontrolfpqq(saved_cw)
  call getcontrolfpqq(cw2)
  call check_int('control word in INTEGER(4) and INTEGER(2)', saved_cw, iand(int(cw2, 4), 65535))
  cw4 = ior(iand(saved_cw, not(int(FPCW$MCW_RC, 4))), int(FPCW$CHOP, 4))
  call setcontrolfpqq(cw4)
  call getcontrolfpqq(cw4)
  call check_int('rounding set through an INTEGER(4) word', iand(cw4, int(FPCW$MCW_RC, 4)), int(FPCW$CHOP, 4))
  call setcontrolfpqq(saved_cw)

  call check_int('unlink', unlink('dropin_legacy.dat'), 0)
  call checks_done('dropin_legacy')
end program dropin_legacy
