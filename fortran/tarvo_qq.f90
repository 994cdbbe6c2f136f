! Interfaces of the QQ compatibility routines and the run-time's unit operations.
module tarvo_qq
  implicit none
  public

  interface
    ! Writes the unit's pending output.
    subroutine flushqq(iunit)
      integer(4), intent(in) :: iunit
    end subroutine flushqq

    ! Flushes the unit and commits it to storage; .TRUE. on success.
    logical(4) function commitqq(iunit)
      integer(4), intent(in) :: iunit
    end function commitqq

    ! The calling thread's last system error number.
    integer(4) function getlasterrorqq()
    end function getlasterrorqq
  end interface
end module tarvo_qq
