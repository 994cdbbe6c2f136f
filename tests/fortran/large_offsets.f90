! The 8-byte position routines beyond 2 GiB, on a sparse file: the same on 32-bit and 64-bit
! builds. The unit is attached to a descriptor, so either compiler's units take part.
program large_offsets
  use tarvo_portlib
  use tarvo_posix, only: pxfopen, pxffdopen, ipxfconst
  use tarvo_check
  implicit none
  integer(8), parameter :: far = 3000000000_8
  integer, parameter :: u = 40
  integer :: fd, ierror
  character(len=1) :: ch

  call pxfopen('large_offsets.bin', 0, ior(ipxfconst('O_RDWR'), ior(ipxfconst('O_CREAT'), ipxfconst('O_TRUNC'))), &
               int(o'600'), fd, ierror)
  call check_int('pxfopen', ierror, 0)
  call pxffdopen(fd, u, 'r+', ierror)
  call check_int('pxffdopen', ierror, 0)
  call check_int('fseeki8 beyond 2 GiB', fseeki8(u, far, 0), 0)
  call check_int('no error recorded', ierrno(), 0)
  call check_int8('ftelli8 there', ftelli8(u), far)
  call check_int8('getposi8 there', getposi8(u), far)
  call check_int('fputc beyond 2 GiB', fputc(u, 'z'), 0)
  call check_int8('ftelli8 after fputc', ftelli8(u), far + 1)
  call check_int('relative seek from there', fseeki8(u, -1_8, 1), 0)
  call check_int('fgetc reads it back', fgetc(u, ch), 0)
  call check_str('the character beyond 2 GiB', ch, 'z')
  call check_int('seek to the end', fseeki8(u, 0_8, 2), 0)
  call check_int8('the sparse file size', ftelli8(u), far + 1)
  call check_int('relative seek back over 2 GiB', fseeki8(u, -(far - 10_8), 1), 0)
  call check_int8('ftelli8 near the start', ftelli8(u), 11_8)
  ! A real failure stays one, from beyond 2 GiB too, and leaves the position alone.
  call check_int('seek to 4 GiB + 1', fseeki8(u, 4294967297_8, 0), 0)
  call check_int('seek before the start from there', fseeki8(u, -5000000000_8, 1), 22)
  call check_int('the error recorded', ierrno(), 22)
  call check_int8('the position is unchanged', getposi8(u), 4294967297_8)
  close (u)
  open (newunit=fd, file='large_offsets.bin')
  close (fd, status='delete')
  call checks_done('large_offsets')
end program large_offsets
