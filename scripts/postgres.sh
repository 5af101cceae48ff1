# A PostgreSQL server for the tests, on the loopback address alone, in a folder of its own that goes with it. Sourced after setup.sh.

BRV_PG_FOLDER='' BRV_PG_WATCHER='' BRV_PG_SWITCHES=''

# As whom servers of databases run: they refuse to be root.
as_server() {
    if [ "$(id -u)" = 0 ]; then runuser -u nobody -- "$@"; else "$@"; fi
}

# make_server_folder NAME [LONGEST]: makes a folder that this user may write, and prints it. Below build/ unless its path is longer than so
# many plain characters.
make_server_folder() {
    local folder=$BRV_BUILD/$1 LC_ALL=C
    mkdir -p "$folder" || return 1
    [ -z "${2:-}" ] || [[ $folder =~ ^[!-~]{1,$2}$ ]] || folder=/tmp
    if [ "$(id -u)" = 0 ] && [ "$folder" != /tmp ]; then
        chown nobody "$folder"
        # A build folder below somebody's home may be closed to that user.
        as_server test -w "$folder" || folder=/tmp
    fi
    as_server mktemp -d "$folder/$1.XXXXXX"
}

# start_postgres: starts the server and exports BRV_PG, the ODBC connection string for it, and BRV_PG_SWITCH, the folder (as a
# Windows program names it) in which a test creates the file "stop" or "start" to have that done; the file goes when it is done.
start_postgres() {
    local bin log=$BRV_LOGS/postgres.log port password try
    bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)
    [ -n "$bin" ] && [ -x "$bin/initdb" ] || die "the PostgreSQL server is not installed (package postgresql)"
    mkdir -p "$BRV_LOGS"
    BRV_PG_FOLDER=$(make_server_folder postgres) || die "no folder for the PostgreSQL server"
    password=$(head -c 18 /dev/urandom | base64 | tr -d '/+=')
    as_server sh -c 'umask 077; printf "%s\n" "$1" >"$2/password"' sh "$password" "$BRV_PG_FOLDER"
    if ! (cd / && as_server "$bin/initdb" -D "$BRV_PG_FOLDER/data" -U brv --pwfile="$BRV_PG_FOLDER/password" -A scram-sha-256 \
        -E UTF8 --locale=C.UTF-8 --no-sync) >"$log" 2>&1 </dev/null; then
        log_tail "$log"
        die "initdb could not make a database for the tests"
    fi
    for try in 1 2 3 4 5; do
        port=$((20000 + RANDOM % 20000))
        if (cd / && as_server "$bin/pg_ctl" -D "$BRV_PG_FOLDER/data" -w -t 30 -l "$BRV_PG_FOLDER/log" -o "-p $port -c fsync=off \
            -c listen_addresses=127.0.0.1 -c unix_socket_directories=" start) >>"$log" 2>&1 </dev/null 9>&-; then
            break
        fi
        [ "$try" != 5 ] || { cat "$BRV_PG_FOLDER/log" >>"$log"; log_tail "$log"; die "the PostgreSQL server did not start"; }
    done
    export BRV_PG="Driver=PostgreSQL Unicode;Server=127.0.0.1;Port=$port;Database=postgres;Uid=brv;Pwd=$password"
    BRV_PG_SWITCHES=$(mktemp -d "$BRV_BUILD/postgres/switch.XXXXXX") || die "no folder for switching the server"
    export BRV_PG_SWITCH
    BRV_PG_SWITCH=$(windows_path "$BRV_PG_SWITCHES")
    watch_postgres_switch "$bin" "$port" "$BRV_PG_SWITCHES" >>"$log" 2>&1 </dev/null 9>&- &
    BRV_PG_WATCHER=$!
}

watch_postgres_switch() { # BIN PORT FOLDER
    cd / || return
    while sleep 0.1; do
        if [ -e "$3/stop" ]; then
            as_server "$1/pg_ctl" -D "$BRV_PG_FOLDER/data" -m immediate -w stop
            rm -f "$3/stop"
        elif [ -e "$3/start" ]; then
            as_server "$1/pg_ctl" -D "$BRV_PG_FOLDER/data" -w -t 30 -l "$BRV_PG_FOLDER/log" -o "-p $2 -c fsync=off \
                -c listen_addresses=127.0.0.1 -c unix_socket_directories=" start
            rm -f "$3/start"
        fi
    done
}

stop_postgres() {
    [ -z "$BRV_PG_WATCHER" ] || kill "$BRV_PG_WATCHER" 2>/dev/null
    BRV_PG_WATCHER=''
    [ -z "$BRV_PG_SWITCHES" ] || rm -rf "$BRV_PG_SWITCHES"
    BRV_PG_SWITCHES=''
    [ -n "$BRV_PG_FOLDER" ] || return 0
    local bin
    bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)
    [ ! -f "$BRV_PG_FOLDER/data/postmaster.pid" ] ||
        (cd / && as_server "$bin/pg_ctl" -D "$BRV_PG_FOLDER/data" -m immediate -w -t 20 stop) >/dev/null 2>&1
    rm -rf "$BRV_PG_FOLDER"
    BRV_PG_FOLDER=''
}
