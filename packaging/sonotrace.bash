# shellcheck shell=bash
# Completion for bash. What options there are, the program says itself.
_sonotrace() {
    local program=${COMP_WORDS[0]} word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local words='' subcommand=''
    case ${COMP_WORDS[1]-} in
    [a-z]*) [ "$COMP_CWORD" -lt 2 ] || subcommand=${COMP_WORDS[1]} ;;
    esac
    COMPREPLY=()
    case $subcommand$before in
    measure--output | measure--input)
        # A line for each: direction, channels, UID, name.
        words=$("$program" devices 2>/dev/null | sed -n "s/^${before:2:2}[a-z]*\**\t[0-9]*\t\([^\t]*\)\t.*/\1/p")
        ;;
    measuremeasure) words='response thd noise' ;;
    esac
    case $before in
    --audio) words='pulse loopback' ;;
    --fft-size) words='64 128 256 512 1024 2048 4096 8192 16384 32768 65536 131072' ;;
    --window) words='rectangular hann hamming tukey cosine lanczos blackman nuttall blackman-nuttall flat-top' ;;
    --channel) words='left right sum difference' ;;
    --mains) words='50 60' ;;
    --steady) words='off 1 2' ;;
    --size) words='1280x720 1920x1080 3840x2160' ;;
    --merge) words='maximum power-mean' ;;
    esac
    if [ -n "$words" ]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
        return
    fi
    case $word in
    -*)
        words=$("$program" ${subcommand:+"$subcommand"} --help 2>/dev/null | grep -o -e '--[a-z][a-z-]*')
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word" | sort -u)
        return
        ;;
    esac
    if [ "$COMP_CWORD" -eq 1 ]; then
        words=$("$program" --help 2>/dev/null | sed -n '/^Subcommands/,/^$/s/^  \([a-z]*\) .*/\1/p')
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    fi
    local files
    mapfile -t files < <(compgen -f -- "$word")
    COMPREPLY+=("${files[@]}")
}
complete -o filenames -F _sonotrace sonotrace
