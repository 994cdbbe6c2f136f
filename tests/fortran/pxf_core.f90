! Constants, structure instances and field access through the tarvo_posix module.
program pxf_core
  use tarvo_posix
  use tarvo_check
  implicit none
  integer(4), external :: doubled
  integer(4) :: ival, ierror, jstat, jcopy, jterm, jgroup, jsub, nccs, ialen, i, ilen
  integer(4), allocatable :: cc(:), back(:)
  integer(8) :: big
  character(len=2) :: short
  character(len=16) :: text
  real(8) :: d

  ! constants: any case, cut at the first blank; unknown names answer ENONAME
  call pxfconst('sig_block   ', ival, ierror)
  call check_int('pxfconst sig_block', ierror, 0)
  call check_int('ipxfconst SIG_BLOCK', ipxfconst('SIG_BLOCK'), ival)
  call check_int('ipxfconst S_IRWXU', ipxfconst('S_IRWXU'), &
                 ior(ior(ipxfconst('S_IRUSR'), ipxfconst('S_IWUSR')), ipxfconst('S_IXUSR')))
  call check_int('ipxfconst ENONAME', ipxfconst('ENONAME'), ENONAME)
  call pxfconst('ENAMETOOLONG', ival, ierror)
  call check_int('pxfconst ENAMETOOLONG', ierror, ENONAME)
  call check_int('pxfconst ENAMETOOLONG value', ival, -1)
  call check_true('pxfisconst EEND', pxfisconst('EEND'))
  call check_false('pxfisconst blank', pxfisconst('   '))
  call check_true('pxfisconst with trailing words', pxfisconst('O_RDONLY extra words'))

  ! a "stat" instance: 4-byte and 8-byte fields
  jstat = 0
  call pxfstructcreate(PXF_STAT, jstat, ierror)
  call check_int('create stat', ierror, 0)
  call pxfintset(jstat, 'st_mode', ipxfconst('S_IFDIR'), ierror)
  call pxfintget(jstat, 'ST_MODE', ival, ierror)
  call check_int('st_mode', ival, ipxfconst('S_IFDIR'))
  big = 3_8 * 1024_8**3
  call pxfint8set(jstat, 'st_size', big, ierror)
  ival = -7
  call pxfintget(jstat, 'st_size', ival, ierror)
  call check_int('st_size too big for INTEGER(4)', ierror, ipxfconst('ERANGE'))
  call check_int('value untouched on ERANGE', ival, -7)
  big = 0
  call pxfint8get(jstat, 'st_size', big, ierror)
  call check_int8('st_size as INTEGER(8)', big, 3_8 * 1024_8**3)
  call pxfintget(jstat, 'c_iflag', ival, ierror)
  call check_int('field of another type', ierror, ENONAME)

  jcopy = 0
  call pxfstructcreate('STAT', jcopy, ierror)
  call pxfstructcopy('stat', jstat, jcopy, ierror)
  call check_int('copy stat', ierror, 0)
  call pxfint8get(jcopy, 'st_size', big, ierror)
  call check_int8('copied st_size', big, 3_8 * 1024_8**3)

  ! "termios" control characters: whole array and single elements
  nccs = ipxfconst('NCCS')
  allocate (cc(nccs + 1), back(nccs + 1))
  cc = [(i * 3, i = 1, nccs + 1)]
  back = -1
  jterm = 0
  call pxfstructcreate(PXF_TERMIOS, jterm, ierror)
  call pxfstructcopy('termios', jstat, jterm, ierror)
  call check_int('copy between types', ierror, 22)
  ialen = nccs + 1
  call pxfaintset(jterm, 'c_cc', cc, ialen, ierror)
  call check_int('aintset beyond NCCS', ierror, EARRAYLEN)
  call check_int('ialen cut to NCCS', ialen, nccs)
  call pxfaintget(jterm, 'c_cc', back, ialen, ierror)
  call check_int('aintget', ierror, 0)
  call check_true('c_cc round trip', all(back(1:nccs) == cc(1:nccs)) .and. back(nccs + 1) == -1)
  call pxfeintget(jterm, 'c_cc', nccs, ival, ierror)
  call check_int('eintget last element', ival, 3 * nccs)
  call pxfeintget(jterm, 'c_cc', 0, ival, ierror)
  call check_int('eintget index 0', ierror, EARRAYLEN)
  deallocate (cc, back)

  ! "group" texts belong to the instance
  jgroup = 0
  call pxfstructcreate('group', jgroup, ierror)
  call pxfstrset(jgroup, 'gr_name', 'wheel   ', 0, ierror)
  call check_int('strset gr_name', ierror, 0)
  call pxfstrget(jgroup, 'gr_name', text, ilen, ierror)
  call check_str('strget gr_name', text, 'wheel')
  call check_int('gr_name length', ilen, 5)
  call pxfstrget(jgroup, 'gr_name', short, ilen, ierror)
  call check_int('strget into 2 characters', ierror, ETRUNC)
  call check_str('first two characters', short, 'wh')
  call pxfestrget(jgroup, 'gr_mem', 1, text, ilen, ierror)
  call check_int('no members yet', ierror, EARRAYLEN)

  ! procedures by handle; accessors of kinds no structure has
  call pxfgetsubhandle(doubled, jsub, ierror)
  call check_int('getsubhandle', ierror, 0)
  ival = 21
  call pxfcallsubhandle(jsub, ival, ierror)
  call check_int('callsubhandle', ival, 42)
  call pxfdblget(jstat, 'st_size', d, ierror)
  call check_int('pxfdblget', ierror, ENONAME)

  call pxfstructfree(jgroup, ierror)
  call pxfstructfree(jterm, ierror)
  call pxfstructfree(jcopy, ierror)
  call pxfstructfree(jstat, ierror)
  call check_int('free', ierror, 0)
  call check_int('handle cleared', jstat, 0)
  call pxfstructfree(jstat, ierror)
  call check_int('free twice', ierror, ENOHANDLE)
  call checks_done('pxf_core')
end program pxf_core

integer(4) function doubled(ival)
  integer(4), intent(inout) :: ival
  ival = 2 * ival
  doubled = ival
end function doubled
