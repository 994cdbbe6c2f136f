! Reaches the run-time's internal operations from the test programs that check them.
module runtime_shim
  use iso_c_binding
  implicit none
  interface
    integer(c_int) function backend_is_gfortran() bind(c, name='tarvo_t_backend_is_gfortran')
      import
    end function
    integer(c_int) function gethandle(unit) bind(c, name='tarvo_t_gethandle')
      import
      integer(c_int32_t), value :: unit
    end function
    integer(c_int) function readchar(unit) bind(c, name='tarvo_t_readchar')
      import
      integer(c_int32_t), value :: unit
    end function
    integer(c_int) function writechar(unit, ch) bind(c, name='tarvo_t_writechar')
      import
      integer(c_int32_t), value :: unit, ch
    end function
    integer(c_int) function fseek_unit(unit, offset, origin) bind(c, name='tarvo_t_fseek')
      import
      integer(c_int32_t), value :: unit, origin
      integer(c_int64_t), value :: offset
    end function
    integer(c_int64_t) function curpos(unit) bind(c, name='tarvo_t_curpos')
      import
      integer(c_int32_t), value :: unit
    end function
    integer(c_int) function fdopen_unit(fd, unit, access) bind(c, name='tarvo_t_fdopen')
      import
      integer(c_int), value :: fd
      integer(c_int32_t), value :: unit
      character(kind=c_char), dimension(*) :: access
    end function
    integer(c_int32_t) function nargs() bind(c, name='tarvo_t_nargs')
      import
    end function
    integer(c_int32_t) function getarg_len(m, buf, len) bind(c, name='tarvo_t_getarg')
      import
      integer(c_int32_t), value :: m, len
      character(kind=c_char), dimension(*) :: buf
    end function
    integer(c_int) function c_open(path, write_access, skip) bind(c, name='tarvo_t_open')
      import
      character(kind=c_char), dimension(*) :: path
      integer(c_int), value :: write_access, skip
    end function
    integer(c_int) function c_open_write_only(path) bind(c, name='tarvo_t_open_append_only')
      import
      character(kind=c_char), dimension(*) :: path
    end function
    integer(c_int64_t) function size_of(fd) bind(c, name='tarvo_t_size_of')
      import
      integer(c_int), value :: fd
    end function
    integer(c_int) function pipe_with(text) bind(c, name='tarvo_t_pipe_with')
      import
      character(kind=c_char), dimension(*) :: text
    end function
    integer(c_int) function c_close(fd) bind(c, name='tarvo_t_close')
      import
      integer(c_int), value :: fd
    end function
    subroutine exit_program(status) bind(c, name='tarvo_t_exit')
      import
      integer(c_int32_t), value :: status
    end subroutine
    subroutine abort_program(message) bind(c, name='tarvo_t_abort')
      import
      character(kind=c_char), dimension(*) :: message
    end subroutine
    subroutine set_errno(value) bind(c, name='tarvo_t_set_errno')
      import
      integer(c_int), value :: value
    end subroutine
    subroutine in_new_thread(body) bind(c, name='tarvo_t_in_new_thread')
      import
      type(c_funptr), value :: body
    end subroutine
  end interface
end module runtime_shim
