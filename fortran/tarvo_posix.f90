! Interfaces of the POSIX binding (PXF routines).
module tarvo_posix
  implicit none
  public

  interface
    ! Length of STRING without trailing blanks.
    integer(4) function ipxflentrim(string)
      character(len=*), intent(in) :: string
    end function ipxflentrim

    ! Compares I1 and I2 as unsigned numbers: ICMPR is -1, 0 or 1; IDIFF (also the
    ! result) is the distance between them.
    integer(4) function pxfucompare(i1, i2, icmpr, idiff)
      integer(4), intent(in) :: i1, i2
      integer(4), intent(out) :: icmpr, idiff
    end function pxfucompare
  end interface
end module tarvo_posix
