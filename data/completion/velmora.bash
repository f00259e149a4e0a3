# Bash completion for velmora.                                         -*- shell-script -*-
# Preference keys and action names are asked of the running agent, so that they follow the program that
# runs; the lists here stand in when no agent answers.

_velmora_preference_keys() {
    local out
    out=$(timeout 2 "$1" prefs list 2>/dev/null) && out=${out//[\[\]\",]/}
    [[ $out == *[![:space:]]* ]] ||
        out="BasicPreferences WindowManagerPreferences ClipboardPreferences KeyboardBindings ThemePreferences
             MenubarMainIcon UserId LaunchOnStart DeveloperLogsEnabled WindowManagerEnabled
             ClipboardHistoryEnabled AutoUpdateLastCheckTime"
    echo $out
}

_velmora_action_names() {
    local out
    # An empty name is refused with the list of every action.
    out=$(timeout 2 "$1" action "" 2>&1)
    if [[ $out == *"the actions are: "* ]]; then
        out=${out##*the actions are: }
        out=${out//,/ }
    else
        out="windowAreas openWindowSwitcher moveWindowToScreen centerWindow makeWindow16By9 proposeAutoLayout
             navigateWindowSwitcher openClipboardHistory performDirectPastePlainText toggleMonitorDimming
             openSystemMonitoringDashboard matchSnappedWindowFrame noop"
    fi
    echo $out
}

_velmora() {
    local program=$1 cur=${COMP_WORDS[COMP_CWORD]} cword=$COMP_CWORD
    local command=${COMP_WORDS[1]} sub=${COMP_WORDS[2]}
    local words=""
    COMPREPLY=()

    if ((cword == 1)); then
        words="status help prefs logs panel preferences action windows keyboard-cleaning clipboard monitor dimming
               power update sync quit --version --help"
    elif ((cword == 2)); then
        case $command in
        prefs) words="list get set" ;;
        logs) words="export" ;;
        panel) words="show hide toggle" ;;
        action) words=$(_velmora_action_names "$program") ;;
        keyboard-cleaning) words="on off" ;;
        clipboard) words="list search get copy paste delete clear" ;;
        monitor) words="snapshot top kill" ;;
        dimming) words="status set toggle" ;;
        power) words="status on off" ;;
        update) words="check status" ;;
        sync) words="setup status now off" ;;
        esac
    elif ((cword == 3)); then
        case $command/$sub in
        prefs/get | prefs/set) words=$(_velmora_preference_keys "$program") ;;
        power/on) words="--persistent" ;;
        update/check) words="--install" ;;
        monitor/top) words="--by --limit" ;;
        monitor/kill) words="--force" ;;
        logs/export)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$cur")
            return 0
            ;;
        esac
    elif ((cword == 4)) && [[ $command/$sub == sync/setup ]]; then
        words="--user"
    elif ((cword == 4)) && [[ $command/$sub == prefs/set ]]; then
        case ${COMP_WORDS[3]} in
        LaunchOnStart | DeveloperLogsEnabled | WindowManagerEnabled | ClipboardHistoryEnabled) words="true false" ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
    return 0
}

complete -F _velmora velmora
