! A short tour of what a Fortran program sees through the Tarvo portability library.
! Build and run it with scripts/tour.
program tour
  use tarvo
  implicit none

  call heading('Tarvo Fortran portability library: a tour')
  call show_library()
  call show_files()
  call show_wildcards()
  call show_terminal()
  call show_posix()
  call show_time()
  call show_host()
  call show_environment()
  call show_posix_files()
  call show_posix_processes()
  call show_posix_system()
  call show_signals_and_numbers()
  call show_sort_sleep_and_packed_time()
  call show_floating_point()

contains

  subroutine heading(title)
    character(len=*), intent(in) :: title
    print '(/,a,/,a)', title, repeat('-', len(title))
  end subroutine heading

  subroutine item(label, value)
    character(len=*), intent(in) :: label, value
    print '(2x,a,t28,a)', label, value
  end subroutine item

  function str(i) result(s)
    integer, intent(in) :: i
    character(len=12) :: s
    write (s, '(i0)') i
  end function str

  function real_str(x) result(s)
    real(8), intent(in) :: x
    character(len=16) :: s
    write (s, '(f16.3)') x
    s = adjustl(s)
  end function real_str

  subroutine show_library()
    character(len=200) :: text
    character(len=4096) :: cwd
    integer :: rc, t
    rc = for_lodrik_version(text)
    do t = 1, len_trim(text)
      if (text(t:t) == achar(9)) text(t:t) = ' '
    end do
    call item('library', trim(text))
    rc = getcwd(cwd)
    call item('working directory', trim(cwd))
  end subroutine show_library

  subroutine show_files()
    character(len=*), parameter :: scratch = 'tour-scratch.txt'
    integer :: rc
    call heading('Files')
    call item('access /etc/passwd "r"', 'result ' // trim(str(access('/etc/passwd', 'r'))))
    call item('access /no/such/file', 'result ' // trim(str(access('/no/such/file', 'r'))) // &
              ' (missing files answer 22)')
    open (20, file=scratch, status='replace')
    write (20, '(a)') 'scratch'
    close (20)
    rc = chmod(scratch, '644')
    call item('chmod 644', 'result ' // trim(str(rc)) // ', execute access ' // &
              trim(str(access(scratch, 'x'))))
    rc = chmod(scratch, 'u+x')
    call item('chmod u+x', 'result ' // trim(str(rc)) // ', execute access ' // &
              trim(str(access(scratch, 'x'))))
    rc = chmod(scratch, 'u+z')
    call item('chmod u+z', 'result ' // trim(str(rc)) // ' (not a mode)')
    rc = unlink(scratch)
    call item('unlink', 'result ' // trim(str(rc)))
    rc = unlink(scratch)
    call item('unlink again', 'result ' // trim(str(rc)) // ', ierrno ' // trim(str(ierrno())))
  end subroutine show_files

  ! Files listed by wildcard with their sizes and times, a path split into its parts.
  subroutine show_wildcards()
    type(FILE_INFOI8) :: info
    integer(FILE_HANDLE_KIND) :: handle
    character(len=512) :: dir
    character(len=64) :: name, ext
    character(len=2) :: drive
    integer :: n
    call heading('Files by wildcard')
    if (.not. makedirqq('tour-files')) call item('makedirqq', 'tour-files exists already')
    call write_file('tour-files/alpha.dat', 'first')
    call write_file('tour-files/beta.dat', 'the second file')
    call write_file('tour-files/notes.txt', 'not listed')
    if (.not. setfiletimeqq('tour-files/alpha.dat', 946684800)) call item('setfiletimeqq', 'failed')
    handle = FILE_FIRST
    do
      n = getfileinfoqq('tour-files/*.dat', info, handle)
      if (handle == FILE_LAST .or. handle == FILE_ERROR) exit
      call item(info%name(1:n), trim(str(int(transfer(info%length, 0_8)))) // ' bytes, written ' // &
                utc_date(info%lastwrite))
    end do
    n = splitpathqq('tour-files/alpha.dat', drive, dir, name, ext)
    call item('splitpathqq directory', trim(dir))
    call item('            name, ext', trim(name) // ', ' // trim(ext))
    call item('delfilesqq tour-files/*', trim(str(delfilesqq('tour-files/*'))) // ' files deleted')
    if (.not. deldirqq('tour-files')) call item('deldirqq', 'failed')
  end subroutine show_wildcards

  subroutine write_file(path, text)
    character(len=*), intent(in) :: path, text
    integer :: u
    open (newunit=u, file=path, status='replace', access='stream')
    write (u) text
    close (u)
  end subroutine write_file

  ! Seconds since 1970 as a UTC date, YYYY-MM-DD.
  function utc_date(seconds) result(date)
    integer(4), intent(in) :: seconds
    character(len=10) :: date
    integer :: days, era, doe, yoe, doy, mp, d, m, y
    days = seconds / 86400 + 719468
    era = days / 146097
    doe = days - era * 146097
    yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365
    doy = doe - (365 * yoe + yoe / 4 - yoe / 100)
    mp = (5 * doy + 2) / 153
    d = doy - (153 * mp + 2) / 5 + 1
    m = mp + 3 - 12 * (mp / 10)
    y = yoe + era * 400 + (12 - m) / 10
    write (date, '(i4.4,"-",i2.2,"-",i2.2)') y, m, d
  end function utc_date

  subroutine show_terminal()
    call heading('Terminal')
    if (isatty(6)) then
      call item('standard output', 'a terminal, ' // trim(ttynam(6)))
    else
      call item('standard output', 'not a terminal')
    end if
  end subroutine show_terminal

  subroutine show_posix()
    integer :: ival, ierror, jstat, jcopy, ilen
    integer(8) :: size
    character(len=40) :: name
    call heading('POSIX binding')
    ! Constants by name, with this system's values.
    call pxfconst('SIGUSR1', ival, ierror)
    call item('pxfconst SIGUSR1', trim(str(ival)) // ', ierror ' // trim(str(ierror)))
    call item('ipxfconst o_creat', str(ipxfconst('o_creat')))
    call pxfconst('NO_SUCH_NAME', ival, ierror)
    call item('pxfconst NO_SUCH_NAME', trim(str(ival)) // ', ierror ' // trim(str(ierror)) // ' (ENONAME)')
    ! A structure instance, its fields by name, a copy, and the end of both.
    jstat = 0
    jcopy = 0
    call pxfstructcreate('stat', jstat, ierror)
    call pxfstructcreate('stat', jcopy, ierror)
    call pxfint8set(jstat, 'st_size', 5000000000_8, ierror)
    call pxfintget(jstat, 'st_size', ival, ierror)
    call item('5 GB st_size as INTEGER', 'ierror ' // trim(str(ierror)) // ' (ERANGE: use pxfint8get)')
    call pxfstructcopy('stat', jstat, jcopy, ierror)
    call pxfint8get(jcopy, 'st_size', size, ierror)
    write (name, '(i0)') size
    call item('copied st_size', trim(name))
    call pxfstructfree(jcopy, ierror)
    call pxfstructfree(jstat, ierror)
    call item('handle after free', str(jstat))
    call pxfstructcreate('passwd', jstat, ierror)
    call pxfstrset(jstat, 'pw_shell', '/bin/sh   ', 0, ierror)
    call pxfstrget(jstat, 'pw_shell', name, ilen, ierror)
    call item('pw_shell', trim(name) // ' (' // trim(str(ilen)) // ' characters)')
    call pxfstructfree(jstat, ierror)
  end subroutine show_posix

  subroutine show_time()
    integer(4) :: now, local(9), utc(9)
    real(4) :: cpu(2), total
    call heading('Time and date')
    call item('fdate', fdate())
    call item('date, date4, jdate4', date() // '  ' // date4() // '  ' // jdate4())
    call item('clock', clock())
    now = int(time(), 4)
    call ltime(now, local)
    call gmtime(now, utc)
    call item('day of the year', 'ltime ' // trim(str(local(8))) // ', gmtime ' // &
              trim(str(utc(8))) // ' (counted from 1 and from 0)')
    call item('since midnight (secnds)', trim(real_str(real(secnds(0.0), 8))) // ' s')
    call item('running for (dclock)', trim(real_str(dclock())) // ' s')
    total = etime(cpu)
    call item('processor time (etime)', trim(real_str(real(total, 8))) // ' s')
  end subroutine show_time

  subroutine show_host()
    character(len=64) :: host, login
    integer :: rc
    call heading('Host and process')
    rc = hostnm(host)
    call item('host name', trim(host))
    call getlog(login)
    call item('login name', trim(login))
    call item('process, user, group', trim(str(getpid())) // ', ' // trim(str(getuid())) // &
              ', ' // trim(str(getgid())))
    call item('system("exit 3")', 'wait status ' // trim(str(system('exit 3'))))
  end subroutine show_host

  subroutine show_environment()
    character(len=256) :: name, value
    integer :: n
    call heading('Environment')
    call getenv('HOME and the rest is ignored', value)
    call item('getenv HOME', trim(value))
    do n = 1, 5
      call scanenv('LANG', name, value)
      if (name == ' ') exit
      call item('scanenv LANG: ' // trim(name), trim(value))
    end do
    call scanenv('PATH', name, value)
    call item('scanenv PATH: ' // trim(name), value(1:40) // '...')
  end subroutine show_environment

  subroutine show_posix_files()
    character(len=*), parameter :: dir = 'tour-pxf.d'
    integer :: ierror, fd, n, i, idirid, jdirent, jstat, ilen
    integer(8) :: size
    character(len=64) :: name
    character(len=32) :: text
    call heading('POSIX files and directories')
    call pxfmkdir(dir, 0, int(o'755'), ierror)
    call item('pxfmkdir ' // dir, 'ierror ' // trim(str(ierror)))
    ! Three files written through descriptors; names are blank padded, ILEN 0 trims them.
    do i = 1, 3
      write (name, '(a,"/file",i0,".txt")') dir, i
      call pxfopen(name, 0, ipxfconst('O_CREAT') + ipxfconst('O_WRONLY'), int(o'644'), fd, ierror)
      write (text, '("line ",i0,a)') i, achar(10)
      call pxfwrite(fd, text, len_trim(text) * i, n, ierror)
      call pxfclose(fd, ierror)
    end do
    ! The directory listed through a stream handle, each file's size through a "stat" instance.
    jdirent = 0
    jstat = 0
    call pxfstructcreate('dirent', jdirent, ierror)
    call pxfstructcreate('stat', jstat, ierror)
    call pxfopendir(dir, 0, idirid, ierror)
    do
      call pxfreaddir(idirid, jdirent, ierror)
      if (ierror /= 0) exit
      call pxfstrget(jdirent, 'd_name', name, ilen, ierror)
      call pxfstat(dir // '/' // name(1:ilen), 0, jstat, ierror)
      call pxfint8get(jstat, 'st_size', size, ierror)
      write (text, '(i0," bytes")') size
      call item('  ' // name(1:ilen), trim(text))
      if (name(1:1) /= '.') call pxfunlink(dir // '/' // name(1:ilen), 0, ierror)
    end do
    ! The end reports EENDDIR (128), or an error number an earlier call left in errno.
    if (ierror == EENDDIR) then
      call item('end of the listing', 'ierror 128 (EENDDIR)')
    else
      call item('end of the listing', 'ierror ' // trim(str(ierror)) // ' (left in errno by an earlier call)')
    end if
    call pxfclosedir(idirid, ierror)
    call pxfrmdir(dir, 0, ierror)
    call item('pxfrmdir after unlinking', 'ierror ' // trim(str(ierror)))
    call pxffileno(6, fd, ierror)
    call item('pxffileno of unit 6', 'descriptor ' // trim(str(fd)))
    call pxfstructfree(jstat, ierror)
    call pxfstructfree(jdirent, ierror)
  end subroutine show_posix_files

  ! The command line, an environment round trip and a child process, the POSIX way.
  subroutine show_posix_processes()
    character(len=256) :: text
    character(len=8) :: args(3) = [character(len=8) :: 'sh', '-c', 'exit 3']
    integer(4) :: lens(3) = 0, ierror, ilen, i, ipid, istat, iretpid
    call heading('POSIX processes and environment')
    call item('ipxfargc', trim(str(ipxfargc())) // ' arguments after the command name')
    do i = 0, ipxfargc()
      call pxfgetarg(i, text, ilen, ierror)
      call item('  argument ' // trim(str(i)), text(1:ilen))
    end do
    call pxfsetenv('TARVO_TOUR', 0, '  padded value  ', 0, 1, ierror)
    call pxfgetenv('TARVO_TOUR', 0, text, ilen, ierror)
    call item('pxfsetenv then pxfgetenv', '"' // text(1:ilen) // '" (blanks trimmed)')
    call pxfgetenv('TARVO_NOT_SET', 0, text, ilen, ierror)
    call item('pxfgetenv of unset name', 'ierror ' // trim(str(ierror)))
    flush (6)
    call pxffork(ipid, ierror)
    if (ipid == 0) then
      call pxfexecvp('sh', 0, args, lens, 3, ierror)
      call pxffastexit(127)
    end if
    call pxfwaitpid(ipid, istat, 0, iretpid, ierror)
    if (pxfwifexited(istat)) call item('child "sh -c ''exit 3''"', 'exited with ' // trim(str(ipxfwexitstatus(istat))))
  end subroutine show_posix_processes
  ! The system, the user and group running the tour, and whether standard output is a terminal.
  subroutine show_posix_system()
    character(len=256) :: text, name
    integer(4) :: ierror, ilen, juname, jpasswd, jgroup, id, count, now, at(9), ival
    logical(4) :: is_tty
    call heading('POSIX system, users and terminal')
    call pxfstructcreate('utsname', juname, ierror)
    call pxfuname(juname, ierror)
    call pxfstrget(juname, 'sysname', text, ilen, ierror)
    call pxfstrget(juname, 'machine', name, ilen, ierror)
    call item('pxfuname', trim(text) // ' on ' // trim(name))
    call pxfstructfree(juname, ierror)

    call pxfgetuid(id, ierror)
    call pxfstructcreate('passwd', jpasswd, ierror)
    ierror = 0  ! the lookups leave IERROR alone when they succeed
    call pxfgetpwuid(id, jpasswd, ierror)
    call pxfstrget(jpasswd, 'pw_name', name, ilen, ierror)
    call pxfstrget(jpasswd, 'pw_dir', text, ilen, ierror)
    call item('user ' // trim(str(id)), trim(name) // ', home ' // trim(text))
    call pxfstructfree(jpasswd, ierror)
    call pxfgetgid(id, ierror)
    call pxfstructcreate('group', jgroup, ierror)
    ierror = 0
    call pxfgetgrgid(id, jgroup, ierror)
    call pxfstrget(jgroup, 'gr_name', name, ilen, ierror)
    call pxfintget(jgroup, 'gr_nmem', count, ierror)
    call item('group ' // trim(str(id)), trim(name) // ', ' // trim(str(count)) // ' listed members')
    call pxfstructfree(jgroup, ierror)

    call pxfisatty(1, is_tty, ierror)
    if (is_tty) then
      call pxfttyname(1, text, ilen, ierror)
      call item('standard output', 'the terminal ' // text(1:ilen))
    else
      call item('standard output', 'not a terminal')
    end if
    call pxftime(now, ierror)
    call pxflocaltime(now, at, ierror)
    write (text, '(i4.4,"-",i2.2,"-",i2.2," ",i2.2,":",i2.2,", day ",i0," of the year")') &
      at(6), at(5), at(4), at(3), at(2), at(8)
    call item('pxflocaltime', trim(text))
    call pxfsysconf(ipxfconst('_SC_OPEN_MAX'), ival, ierror)
    call item('pxfsysconf _SC_OPEN_MAX', trim(str(ival)))
  end subroutine show_posix_system
  ! A signal handled by a Fortran subroutine, an alarm on the library's timer thread, a
  ! random sequence replayed from its seed and shifts at the edges of their counts.
  subroutine show_signals_and_numbers()
    integer(SIGNAL_KIND) :: previous
    integer :: seed, rc, tour_signals, tour_rang
    real :: first(3), again(3)
    character(len=40) :: text
    ! Shared with the handler and the alarm procedure below.
    common /tour_events/ tour_signals, tour_rang
    call heading('Signals, alarm, random numbers and bits')
    tour_signals = 0
    previous = signal(10, tour_on_signal, SIGNAL_HANDLER)
    rc = kill(getpid(), 10)
    call item('signal 10 to itself', 'handler called ' // trim(str(tour_signals)) // ' time(s)')
    previous = signal(10, tour_on_signal, SIGNAL_DEFAULT)
    tour_rang = 0
    rc = alarm(1, tour_on_alarm)
    call item('alarm(1) set', 'result ' // trim(str(rc)) // '; a second request gives ' // &
              trim(str(alarm(5, tour_on_alarm))) // ' second(s) left')
    call sleep(2)
    rc = alarm(0, tour_on_alarm)  ! orders this read after the timer thread's run
    call item('after two seconds', 'the alarm rang ' // trim(str(tour_rang)) // ' time(s)')
    call srand(2024)
    call ranget(seed)
    first = [rand(), rand(), rand()]
    call iranset(seed)
    again = [rand(), rand(), rand()]
    write (text, '(3f9.6)') first
    call item('rand after srand(2024)', trim(text))
    call item('replayed from ranget', merge('the same three values', 'different values     ', all(first == again)))
    call item('lshift(1, 33), (1, 64)', trim(str(lshift(1, 33))) // ', ' // trim(str(lshift(1, 64))))
    call item('rshift(-8, 33)', trim(str(rshift(-8, 33))))
    call item('rindex of "o"', 'in "hello world": ' // trim(str(rindex('hello world', 'o'))))
  end subroutine show_signals_and_numbers

  subroutine tour_on_signal(signum)
    integer(4), intent(in) :: signum
    integer :: tour_signals, tour_rang
    common /tour_events/ tour_signals, tour_rang
    if (signum == 10) tour_signals = tour_signals + 1
  end subroutine tour_on_signal

  subroutine tour_on_alarm()
    integer :: tour_signals, tour_rang
    common /tour_events/ tour_signals, tour_rang
    tour_rang = tour_rang + 1
  end subroutine tour_on_alarm
  subroutine show_sort_sleep_and_packed_time()
    real(8) :: values(6) = [3.5d0, -1d0, 42d0, 0d0, 2.25d0, -7.5d0], key = 2.25d0
    integer(SRT_COUNT_KIND) :: n
    integer(8) :: before, after, rate
    integer :: t
    integer(2) :: year, month, day, hour, minute, second
    character(len=80) :: text
    call heading('Sorting, sleeping and packed times')
    n = size(values)
    call sortqq(loc(values), n, SRT_REAL8)
    write (text, '(6f7.2)') values
    call item('sortqq REAL(8)', trim(adjustl(text)))
    call item('bsearchqq 2.25', 'index ' // trim(str(int(bsearchqq(loc(key), loc(values), n, SRT_REAL8)))))
    call system_clock(before, rate)
    call sleepqq(250)
    call system_clock(after)
    call item('sleepqq(250)', 'slept ' // trim(str(int((after - before) * 1000 / rate))) // ' ms')
    call packtimeqq(t, 2000, 1, 1, 12, 0, 0)
    call item('packtimeqq 2000-01-01', trim(str(t)) // ' s since 1970 (12:00 local time)')
    call unpacktimeqq(t + 86400 * 366, year, month, day, hour, minute, second)
    write (text, '(i4.4,"-",i2.2,"-",i2.2," ",i2.2,":",i2.2)') year, month, day, hour, minute
    call item('unpacktimeqq + 366 days', trim(text))
  end subroutine show_sort_sleep_and_packed_time
  subroutine show_floating_point()
    integer(2) :: start, cw, sw
    real(8), volatile :: one = 1, three = 3, zero = 0, x
    real(8) :: down, up
    character(len=20) :: out
    character(len=40) :: bits
    call heading('Floating-point control')
    call getcontrolfpqq(start)
    write (out, '("0x",z4.4)') start
    call item('control word at start', out)
    call setcontrolfpqq(ior(iand(start, not(FPCW_MCW_RC)), FPCW_DOWN))
    down = one / three
    call setcontrolfpqq(ior(iand(start, not(FPCW_MCW_RC)), FPCW_UP))
    up = one / three
    write (bits, '(z16.16,1x,z16.16)') transfer(down, 0_8), transfer(up, 0_8)
    call item('1/3 rounded down, up', bits)
    call item('ieee_flags get direction', trim(str(ieee_flags('get', 'direction', '', out)))// ' ' // out)
    call setcontrolfpqq(start)
    call clearstatusfpqq()
    x = one / zero
    call getstatusfpqq(sw)
    call item('status after 1/0', merge('zero divide flag raised', 'no flag                ', &
                                        iand(sw, FPSW_ZERODIVIDE) /= 0))
    call item('ieee_flags get exception', trim(str(ieee_flags('get', 'exception', '', out))) // ' ' // out)
    call clearstatusfpqq()
    call getcontrolfpqq(cw)
    write (out, '("0x",z4.4)') cw
    call item('control word restored', out)
  end subroutine show_floating_point

end program tour
