! Every routine of the library: the three families in one module.
module tarvo
  use tarvo_portlib
  use tarvo_posix
  use tarvo_qq
  implicit none
  public
end module tarvo
