# A MariaDB server for the tests, on a socket in a folder of its own that goes with it. Sourced after setup.sh and postgres.sh.

BRV_MARIADB_FOLDER=''

# start_mariadb WIDTH...: starts the server, and exports BRV_MARIADB, the ODBC connection string that programs of these widths reach it by.
start_mariadb() {
    local log=$BRV_LOGS/mariadb.log password width architecture driver socket try
    command -v mariadb-install-db >/dev/null && [ -x /usr/sbin/mariadbd ] ||
        die "the MariaDB server is not installed (package mariadb-server-core)"
    mkdir -p "$BRV_LOGS"
    for width; do
        architecture=i386
        [ "$width" = 32 ] || architecture=$(dpkg --print-architecture)
        driver=$(files_of "odbc-mariadb:$architecture" | grep -m1 '/libmaodbc\.so$') ||
            die "the ODBC driver of MariaDB is not there (package odbc-mariadb:$architecture)"
        add_odbc_driver "$width" "MariaDB Unicode" "$driver"
    done
    # The path of a socket has 107 characters at most.
    BRV_MARIADB_FOLDER=$(make_server_folder mariadb 80) || die "no folder for the MariaDB server"
    socket=$BRV_MARIADB_FOLDER/socket
    password=$(head -c 18 /dev/urandom | base64 | tr -d '/+=')
    if ! (cd / && as_server mariadb-install-db --no-defaults --datadir="$BRV_MARIADB_FOLDER/data" --skip-test-db --skip-name-resolve \
        --innodb-log-file-size=4M) >"$log" 2>&1 </dev/null; then
        log_tail "$log"
        die "mariadb-install-db could not make a database for the tests"
    fi
    printf "%s;\n" "CREATE USER brv@localhost IDENTIFIED BY '$password'" "GRANT ALL ON *.* TO brv@localhost" "CREATE DATABASE brv" |
        as_server sh -c 'umask 077; cat >"$1"' sh "$BRV_MARIADB_FOLDER/first.sql"
    (cd / && as_server /usr/sbin/mariadbd --no-defaults --datadir="$BRV_MARIADB_FOLDER/data" --socket="$socket" --skip-networking \
        --pid-file="$BRV_MARIADB_FOLDER/pid" --init-file="$BRV_MARIADB_FOLDER/first.sql" --character-set-server=utf8mb4 \
        --innodb-log-file-size=4M --innodb-buffer-pool-size=16M --innodb-flush-log-at-trx-commit=0) >>"$log" 2>&1 </dev/null 9>&- &
    for try in $(seq 300); do
        ! MYSQL_PWD=$password timeout 10 mariadb --no-defaults --socket="$socket" --user=brv --execute='USE brv' >/dev/null 2>&1 || break
        if [ "$try" = 300 ] || ! kill -0 $! 2>/dev/null; then
            log_tail "$log"
            die "the MariaDB server did not start"
        fi
        sleep 0.1
    done
    export BRV_MARIADB="Driver=MariaDB Unicode;Socket=$socket;Database=brv;Uid=brv;Pwd=$password"
}

stop_mariadb() {
    [ -n "$BRV_MARIADB_FOLDER" ] || return 0
    local pid
    # Nothing of what it holds is needed any more.
    pid=$(cat "$BRV_MARIADB_FOLDER/pid" 2>/dev/null) && as_server kill -KILL "$pid" 2>/dev/null
    rm -rf "$BRV_MARIADB_FOLDER"
    BRV_MARIADB_FOLDER=''
}
