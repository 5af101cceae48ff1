# A print queue for the tests that keeps what is printed as PDF files: a CUPS server of our own on the loopback address. Sourced after
# setup.sh.

BRV_CUPS_FOLDER='' BRV_CUPS_PID=''

# start_printing: starts the server and exports CUPS_SERVER, where programs under Wine find the queue "PDF", and BRV_PRINTED, the
# folder with the files of the jobs.
start_printing() {
    local folder log=$BRV_LOGS/cups.log part port try
    [ -x /usr/sbin/cupsd ] || die "the print server is not installed (package cups)"
    mkdir -p "$BRV_LOGS"
    # The server's helpers run as a user who may not enter the build folder.
    folder=$(mktemp -d /tmp/brv-cups.XXXXXX) || die "no folder for the print server"
    BRV_CUPS_FOLDER=$folder
    mkdir -p "$folder"/{etc/ppd,run,cache,spool,tmp,log,lib/backend,printed}
    for part in filter daemon notifier cgi-bin monitor driver; do
        [ ! -d "/usr/lib/cups/$part" ] || ln -s "/usr/lib/cups/$part" "$folder/lib/$part"
    done
    cat >"$folder/lib/backend/keep" <<'TEXT'
#!/bin/sh
# Keeps a job as a file, which has its name only when it is whole. $1 job, $3 title, $6 the file if it is not the input.
[ $# -gt 0 ] || { echo 'direct keep "Unknown" "Jobs kept as files"'; exit 0; }
folder=${DEVICE_URI#keep:}
umask 022
cat ${6:+"$6"} >"$folder/.$1" && printf '%s\n' "$3" >"$folder/job-$1.title" && mv "$folder/.$1" "$folder/job-$1.pdf"
TEXT
    chmod 755 "$folder/lib/backend/keep"
    cp "$BRV_ROOT/scripts/pdf-queue.ppd" "$folder/queue.ppd"
    chmod -R go=rX "$folder" # the umask may have closed it to the helpers
    chmod 1777 "$folder/printed" "$folder/tmp"
    cat >"$folder/etc/cups-files.conf" <<TEXT
ServerRoot $folder/etc
ServerBin $folder/lib
StateDir $folder/run
CacheDir $folder/cache
RequestRoot $folder/spool
TempDir $folder/tmp
AccessLog $folder/log/access
ErrorLog $folder/log/error
PageLog $folder/log/page
SystemGroup root
Sandboxing relaxed
TEXT
    for try in 1 2 3 4 5; do
        port=$((40000 + RANDOM % 10000))
        cat >"$folder/etc/cupsd.conf" <<TEXT
Listen 127.0.0.1:$port
Browsing Off
DefaultAuthType None
WebInterface No
<Location />
Order allow,deny
Allow all
</Location>
<Location /admin>
Order allow,deny
Allow all
</Location>
<Policy default>
<Limit All>
Order allow,deny
Allow all
</Limit>
</Policy>
TEXT
        /usr/sbin/cupsd -f -c "$folder/etc/cupsd.conf" -s "$folder/etc/cups-files.conf" >"$log" 2>&1 </dev/null 9>&- &
        BRV_CUPS_PID=$!
        export CUPS_SERVER=127.0.0.1:$port
        # By its path: that of an ordinary user does not lead to /usr/sbin.
        for ((part = 0; part < 50; ++part)); do
            kill -0 "$BRV_CUPS_PID" 2>/dev/null || break
            if timeout 10 /usr/sbin/lpadmin -p PDF -E -v "keep:$folder/printed" -P "$folder/queue.ppd" >>"$log" 2>&1 </dev/null; then
                timeout 10 /usr/sbin/lpadmin -d PDF >>"$log" 2>&1 </dev/null
                export BRV_PRINTED
                BRV_PRINTED=$(windows_path "$folder/printed")
                return 0
            fi
            sleep 0.1
        done
        kill "$BRV_CUPS_PID" 2>/dev/null
    done
    cat "$folder/log/error" >>"$log" 2>/dev/null
    log_tail "$log"
    die "the print server for the tests did not start"
}

stop_printing() {
    [ -z "$BRV_CUPS_PID" ] || { kill "$BRV_CUPS_PID" && wait "$BRV_CUPS_PID"; } 2>/dev/null
    BRV_CUPS_PID=''
    [ -z "$BRV_CUPS_FOLDER" ] || rm -rf "$BRV_CUPS_FOLDER"
    BRV_CUPS_FOLDER=''
}
