# A PostgreSQL server for tests (source it after lib.sh): test_server_start, test_server_stop. Its data is in
# build/server and is deleted at the end; it listens on a free port of the loopback address only, without a socket file
# elsewhere.
#
# Tests find it through the environment, natively and under Wine:
#   KX_TEST_SERVER     127.0.0.1;PORT=N, what a host would give as its DBServer
#   KX_TEST_USER       an ordinary user who may make databases
#   KX_TEST_ADMIN      the server's first user
#   KX_TEST_PASSWORD   of both
#   KX_TEST_CONTROL    a program that stops and starts, or pauses and resumes the server: CONTROL stop|start|pause|resume
#   ODBCSYSINI         a folder whose odbcinst.ini names the drivers: `sql server`, the one for PostgreSQL, and `SQLite3`
# shellcheck shell=bash

kxServer=${kxBuild:?source lib.sh first}/server
kxServerRunning=

# The newest installed server.
server_programs() {
  find /usr/lib/postgresql -maxdepth 2 -type d -name bin 2>/dev/null | sort -V | tail -n 1
}

# The server refuses to run as root; it then runs as the user that its package created.
as_server_user() {
  if [[ $(id -u) -eq 0 ]]; then
    setpriv --reuid=postgres --regid=postgres --clear-groups -- "$@"
  else
    "$@"
  fi
}

free_port() {
  local port
  for ((port = 20000 + RANDOM % 20000; ; ++port)); do
    (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null || { echo "$port" && return; }
  done
}

# The path of an ODBC driver's library as Debian installs it.
odbc_driver() {
  find /usr/lib -path "*/odbc/$1" 2>/dev/null | sort | head -n 1
}

test_server_start() {
  local programs log=$kxBuild/log/server.log port data
  programs=$(server_programs)
  [[ -n $programs ]] || fail "there is no PostgreSQL server; run scripts/setup.sh server"
  mkdir -p "$kxBuild/log"
  test_server_stop
  rm -rf "$kxServer"
  mkdir -p "$kxServer/odbc"
  # The server's user needs access to the data only; the path to the build folder may be closed to that user.
  if [[ $(id -u) -eq 0 ]]; then
    data=$(as_server_user mktemp -d /tmp/kxrestore-server.XXXXXX)
    ln -s "$data" "$kxServer/data"
  else
    data=$kxServer/data
  fi
  kxServerRunning=$data
  as_server_user mkdir -p "$data"
  echo restore | as_server_user tee "$data/password" >/dev/null
  port=$(free_port)
  logged "$log" as_server_user "$programs/initdb" -D "$data/db" -U kx_admin --auth=scram-sha-256 \
    --pwfile="$data/password" --encoding=UTF8 --locale=C.UTF-8 --no-sync ||
    fail "the test server's data cannot be made"
  cat >"$kxServer/control" <<END
#!/usr/bin/env bash
# Stops or starts, or pauses or resumes the test server: control stop|start|pause|resume
cd /
run=()
[[ \$(id -u) -ne 0 ]] || run=(setpriv --reuid=postgres --regid=postgres --clear-groups --)
case \$1 in
  start)
    exec "\${run[@]}" "$programs/pg_ctl" -D "$data/db" -w -t 60 -s -l "$data/log" start \\
      -o "-p $port -c listen_addresses=127.0.0.1 -c unix_socket_directories='' -c fsync=off -c full_page_writes=off"
    ;;
  pause | resume)
    signal=STOP
    [[ \$1 == pause ]] || signal=CONT
    read -r postmaster <"$data/db/postmaster.pid"
    # shellcheck disable=SC2046
    kill -\$signal "\$postmaster" \$(ps -o pid= --ppid "\$postmaster")
    ;;
  stop) exec "\${run[@]}" "$programs/pg_ctl" -D "$data/db" -w -t 60 -s -m immediate stop ;;
esac
END
  chmod +x "$kxServer/control"
  cat >"$kxServer/odbc/odbcinst.ini" <<END
[sql server]
Description = PostgreSQL under the name that hosts ask for
Driver = $(odbc_driver psqlodbcw.so)

[SQLite3]
Description = SQLite
Driver = $(odbc_driver libsqlite3odbc.so)
END
  : >"$kxServer/odbc/odbc.ini"
  logged "$log" "$kxServer/control" start </dev/null || fail "the test server does not start, see $log"
  PGPASSWORD=restore logged "$log" "$programs/psql" -h 127.0.0.1 -p "$port" -U kx_admin -d postgres -q \
    -c "CREATE ROLE kx_user LOGIN CREATEDB PASSWORD 'restore'" || fail "the test server does not answer, see $log"
  export KX_TEST_SERVER="127.0.0.1;PORT=$port" KX_TEST_USER=kx_user KX_TEST_ADMIN=kx_admin KX_TEST_PASSWORD=restore
  export KX_TEST_CONTROL=$kxServer/control ODBCSYSINI=$kxServer/odbc ODBCINSTINI=odbcinst.ini
}

test_server_stop() {
  [[ -n $kxServerRunning ]] || return 0
  "$kxServer/control" stop >/dev/null 2>&1 || true
  rm -rf "$kxServerRunning"
  kxServerRunning=
}
