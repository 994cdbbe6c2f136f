! Assertions for the Fortran test programs: each names the routine and the values and
! stops the program with a non-zero code on a mismatch.
module tarvo_check
  implicit none
  private
  public :: check_int, check_int8, check_str, check_true, check_false, checks_done

  integer, save :: failures = 0

contains

  subroutine check_int(what, got, want)
    character(len=*), intent(in) :: what
    integer(4), intent(in) :: got, want
    if (got /= want) call fail(what, 'got', got, 'want', want)
  end subroutine check_int

  subroutine check_int8(what, got, want)
    character(len=*), intent(in) :: what
    integer(8), intent(in) :: got, want
    if (got /= want) then
      write (0, '(a,": got ",i0,", want ",i0)') what, got, want
      failures = failures + 1
    end if
  end subroutine check_int8

  subroutine check_str(what, got, want)
    character(len=*), intent(in) :: what, got, want
    if (got /= want) then
      write (0, '(a,": got """,a,""", want """,a,"""")') what, got, want
      failures = failures + 1
    end if
  end subroutine check_str

  subroutine check_true(what, cond)
    character(len=*), intent(in) :: what
    logical, intent(in) :: cond
    if (.not. cond) then
      write (0, '(a,": expected true")') what
      failures = failures + 1
    end if
  end subroutine check_true

  subroutine check_false(what, cond)
    character(len=*), intent(in) :: what
    logical, intent(in) :: cond
    call check_true(what, .not. cond)
  end subroutine check_false

  subroutine fail(what, l1, v1, l2, v2)
    character(len=*), intent(in) :: what, l1, l2
    integer(4), intent(in) :: v1, v2
    write (0, '(a,": ",a," ",i0,", ",a," ",i0)') what, l1, v1, l2, v2
    failures = failures + 1
  end subroutine fail

  ! Ends the program: status 0 when every check held, 1 otherwise.
  subroutine checks_done(program_name)
    character(len=*), intent(in) :: program_name
    if (failures > 0) then
      write (0, '(a,": ",i0," check(s) failed")') program_name, failures
      error stop 1
    end if
    write (*, '(a,": all checks passed")') program_name
  end subroutine checks_done

end module tarvo_check
