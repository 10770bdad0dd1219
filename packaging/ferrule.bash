# bash completion for ferrule-host and ferrule-device.
# The options come from the program's own --help, so they are always the ones it takes; the
# values of a few options are completed from what they accept.

_ferrule_options()
{
    QT_QPA_PLATFORM=offscreen LC_ALL=C "$1" --help 2>/dev/null |
        grep -oE -- '--[a-z][a-z-]*( <[^>]*>)?'
}

_ferrule()
{
    local cur prev words cword split
    _init_completion -s || return

    case $prev in
        --model | -m)
            COMPREPLY=($(compgen -W '3 5 6 8 10' -- "$cur"))
            return
            ;;
        --midi-api)
            COMPREPLY=($(compgen -W 'alsa jack' -- "$cur"))
            return
            ;;
        --screenshot | --main-screenshot)
            _filedir png
            return
            ;;
        --syx)
            _filedir syx
            return
            ;;
        --export)
            _filedir '@(syx|txt)'
            return
            ;;
        --data | -d | --save | --diff)
            _filedir
            return
            ;;
        --plugin)
            _filedir so
            return
            ;;
    esac

    local options
    options=$(_ferrule_options "$1")
    # Any other option that takes a value: nothing to offer for it.
    if [[ $prev == --* ]] && grep -qxE -- "$prev <.*" <<<"$options"; then
        return
    fi
    $split && return

    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$(sed 's/ <.*//' <<<"$options")" -- "$cur"))
        return
    fi
    # ferrule-host opens a file named alone in its main window.
    [[ $1 == *ferrule-host ]] && _filedir
}

complete -F _ferrule ferrule-host ferrule-device
