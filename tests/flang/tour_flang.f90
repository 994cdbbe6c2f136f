! A program built by LLVM flang: its units are not the library's, so the library's own
! unit table serves it, with the standard units preconnected.
program tour_flang
  use tarvo
  implicit none
  character(len=64) :: text
  integer :: failures, sb(13)
  failures = 0
  if (for_lodrik_version(text) /= 3) failures = failures + 1
  if (text(1:33) /= 'Tarvo Fortran portability library') failures = failures + 1
  if (access('.', 'rx') /= 0) failures = failures + 1
  if (access('no-such-file', 'r') /= 22) failures = failures + 1
  if (ierrno() /= 22) failures = failures + 1
  if (isatty(77)) failures = failures + 1
  if (getlasterror() /= 9) failures = failures + 1
  if (.not. commitqq(6)) failures = failures + 1
  if (commitqq(77)) failures = failures + 1
  if (lnblnk('ab  ') /= 2) failures = failures + 1
  sb(13) = 77
  if (stat('.', sb) /= 0 .or. sb(13) /= 77) failures = failures + 1
  if (fputc(77, 'x') /= 22 .or. ierrno() /= 22) failures = failures + 1
  if (failures /= 0) then
    print '(a,i0,a)', 'tour_flang: ', failures, ' check(s) failed'
    error stop 1
  end if
  print '(a)', 'tour_flang: all checks passed'
end program tour_flang
