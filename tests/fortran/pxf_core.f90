! Constants, structure instances and field access through the tarvo_posix module: every
! argument kind the routines take (names, INTEGER(8), arrays, texts, procedures).
program pxf_core
  use tarvo_posix
  use tarvo_check
  implicit none
  integer(4), external :: doubled
  integer(4) :: ival, ierror, jsub, i, ilen, cc(40), back(40), ialen = 40
  integer(4) :: jstat = 0, jcopy = 0, jterm = 0, jgroup = 0
  integer(8) :: big
  character(len=16) :: text
  real(8) :: d

  call pxfconst('sig_block   ', ival, ierror)
  call check_int('pxfconst sig_block', ival, ipxfconst('SIG_BLOCK more words'))
  call check_int('ipxfconst ENONAME', ipxfconst('ENONAME'), ENONAME)
  call check_true('pxfisconst EEND, not ENAMETOOLONG', pxfisconst('EEND') .and. .not. pxfisconst('ENAMETOOLONG'))

  ! An INTEGER(8) field too wide for INTEGER(4), and copied.
  call pxfstructcreate(PXF_STAT, jstat, ierror)
  call pxfstructcreate('STAT', jcopy, ierror)
  call check_int('create stat', ierror, 0)
  call pxfint8set(jstat, 'st_size', 3_8 * 1024_8**3, ierror)
  call pxfintget(jstat, 'st_size', ival, ierror)
  call check_int('st_size too big for INTEGER(4)', ierror, ipxfconst('ERANGE'))
  call pxfstructcopy('stat', jstat, jcopy, ierror)
  call pxfint8get(jcopy, 'ST_SIZE', big, ierror)
  call check_int8('copied st_size', big, 3_8 * 1024_8**3)

  ! "termios" control characters: IALEN beyond NCCS is cut to it.
  cc = [(3 * i, i = 1, 40)]
  back = -1
  call pxfstructcreate(PXF_TERMIOS, jterm, ierror)
  call pxfaintset(jterm, 'c_cc', cc, ialen, ierror)
  call check_int('aintset beyond NCCS', ierror, EARRAYLEN)
  call check_int('ialen cut to NCCS', ialen, ipxfconst('NCCS'))
  call pxfaintget(jterm, 'c_cc', back, ialen, ierror)
  call check_true('c_cc round trip', all(back(1:ialen) == cc(1:ialen)) .and. back(ialen + 1) == -1)
  call pxfeintget(jterm, 'c_cc', 2, ival, ierror)
  call check_int('eintget element 2', ival, 6)

  call pxfstructcreate('group', jgroup, ierror)
  call pxfstrset(jgroup, 'gr_name', 'wheel   ', 0, ierror)
  call pxfstrget(jgroup, 'gr_name', text, ilen, ierror)
  call check_str('strget gr_name', text, 'wheel')
  call check_int('gr_name length', ilen, 5)

  call pxfgetsubhandle(doubled, jsub, ierror)
  ival = 21
  call pxfcallsubhandle(jsub, ival, ierror)
  call check_int('callsubhandle', ival, 42)
  call pxfdblget(jstat, 'st_size', d, ierror)
  call check_int('pxfdblget', ierror, ENONAME)
  ! The SET forms take constants (their arguments are INTENT(IN)).
  call pxfdblset(jstat, 'st_size', 1.0d0, ierror)
  call check_int('pxfdblset of a constant', ierror, ENONAME)

  call pxfstructfree(jgroup, ierror)
  call pxfstructfree(jterm, ierror)
  call pxfstructfree(jcopy, ierror)
  call pxfstructfree(jstat, ierror)
  call check_int('handle cleared', jstat, 0)
  call checks_done('pxf_core')
end program pxf_core

integer(4) function doubled(ival)
  integer(4), intent(inout) :: ival
  ival = 2 * ival
  doubled = ival
end function doubled
