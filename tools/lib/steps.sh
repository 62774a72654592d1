# shellcheck shell=bash
# Sourced by the shell tools: where things stand, how a long step is run and reported.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
logs="$root/build/log"

# fail SENTENCE: the sentence says what to do.
fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

# One line of at most 70 characters about what the log says now; ninja and apt overwrite lines with carriage returns.
last_words() {
    tail -c 400 "$1" 2>/dev/null | tr '\r' '\n' | sed '/^[[:space:]]*$/d' | tail -n 1 | cut -c1-70
}

# report_until_end PID LOG TEXT: on a terminal one line that moves, elsewhere a line every half minute.
report_until_end() {
    local pid=$1 log=$2 text=$3 begin=$SECONDS spoken=$SECONDS
    while kill -0 "$pid" 2>/dev/null; do
        sleep 0.2
        if [ -t 1 ]; then
            printf '\r\033[K%s ... %d s  %s' "$text" $((SECONDS - begin)) "$(last_words "$log")"
        elif [ $((SECONDS - spoken)) -ge 30 ]; then
            spoken=$SECONDS
            printf '    %d s: %s\n' $((SECONDS - begin)) "$(last_words "$log")"
        fi
    done
    [ ! -t 1 ] || printf '\r\033[K'
}

# step NAME TEXT COMMAND...: runs the command with its output in build/log/NAME.log. Returns its exit code.
step() {
    local name=$1 text=$2 begin=$SECONDS code=0
    local log="$logs/$name.log"
    shift 2
    if ! mkdir -p "$logs" 2>/dev/null || ! : 2>/dev/null >"$log"; then
        fail "$log cannot be written; does build/ belong to another user?"
    fi
    [ -t 1 ] || printf '%s ...\n' "$text"
    # A process group of its own: on Ctrl-C all of it is asked to end, and waited for, since it may have to clean up.
    set -m
    "$@" >"$log" 2>&1 </dev/null &
    local pid=$!
    set +m
    trap 'trap "" INT TERM; kill -TERM -- "-$pid" 2>/dev/null; wait "$pid"; exit 130' INT TERM
    report_until_end "$pid" "$log" "$text"
    wait "$pid" || code=$?
    trap - INT TERM
    if [ "$code" -eq 0 ]; then
        printf '%s: done in %d s\n' "$text" $((SECONDS - begin))
    else
        printf '%s: failed with %d after %d s; the end of %s:\n' "$text" "$code" $((SECONDS - begin)) "${log#"$root"/}"
        tail -n "${STEP_TAIL:-40}" "$log" | tr '\r' '\n'
    fi
    return "$code"
}
