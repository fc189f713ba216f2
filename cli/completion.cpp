// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/completion.h"

#include "cli/helpText.h"

#include <algorithm>

namespace
{

struct shellScript {
    const char *shell;
    const char *script;
};

// A name may hold blanks and quotes. So each is a line, is compared without quotes, since some may
// have been typed already, and is quoted as the shell itself does it.
constexpr shellScript scripts[] = {
    {"bash", R"script(# eval "$(fennick-cli completion bash)" in ~/.bashrc
_fennick_cli() {
    local line typed=${COMP_WORDS[COMP_CWORD]//[\\\"\']/}
    [[ $typed == = ]] && typed=
    COMPREPLY=()
    while IFS= read -r line; do
        [[ ${line//[\"\']/} == "$typed"* ]] && COMPREPLY+=("$(printf %q "$line")")
    done < <(fennick-cli complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2> /dev/null)
}
complete -o default -F _fennick_cli fennick-cli
)script"},
    {"zsh", R"script(#compdef fennick-cli
# eval "$(fennick-cli completion zsh)" in ~/.zshrc, after compinit
_fennick_cli() {
    local -a candidates
    candidates=("${(@f)$(fennick-cli complete -- "${(@Q)words[2,CURRENT]}" 2> /dev/null)}")
    if [[ -n $candidates[1] ]]; then
        compadd -a candidates
    else
        _files
    fi
}
compdef _fennick_cli fennick-cli
)script"},
    {"fish", R"script(# fennick-cli completion fish | source, in ~/.config/fish/config.fish
function __fennick_cli_candidates
    set -l typed (commandline -opc) (commandline -ct)
    fennick-cli complete -- $typed[2..-1] 2> /dev/null
end
complete -c fennick-cli -a '(__fennick_cli_candidates)'
)script"},
};

QStringList optionNames(const commandRow &command)
{
    QStringList names;
    for (const optionRow &row : command.options)
        names.append(QStringLiteral("--") + row.name);
    return names << QStringLiteral("--help") << QStringLiteral("--version");
}

/// The option that @p word is, if it takes an argument.
const optionRow *optionWithArgument(const commandRow &command, const QString &word)
{
    const auto row =
        std::find_if(command.options.begin(), command.options.end(), [&word](const optionRow &one) {
            return !one.argument.isEmpty()
                   && (word == QStringLiteral("--") + one.name
                       || (one.letter != '\0'
                           && word == QStringLiteral("-%1").arg(QLatin1Char(one.letter))));
        });
    return row == command.options.end() ? nullptr : &*row;
}

QStringList namesFor(completes with, const completionNames &names)
{
    QStringList candidates;
    switch (with) {
    case completes::tests:
        for (const listedTest &test : names.tests)
            candidates.append(test.name.simplified());
        return candidates << QStringLiteral("single") << QStringLiteral("multi");
    case completes::resolutions:
        return names.resolutions;
    case completes::runs:
        return {QStringLiteral("last"), QStringLiteral("stored")};
    case completes::shells:
        return completionShells();
    case completes::files:
    case completes::nothing:
        break;
    }
    return {};
}

} // namespace

QStringList completionShells()
{
    QStringList shells;
    for (const shellScript &one : scripts)
        shells.append(QLatin1String(one.shell));
    return shells;
}

QString completionScript(const QString &shell)
{
    for (const shellScript &one : scripts) {
        if (shell == QLatin1String(one.shell))
            return QLatin1String(one.script);
    }
    return {};
}

QStringList completionCandidates(const QStringList &words, const completionNames &names)
{
    QStringList before = words;
    const QString typed = before.isEmpty() ? QString() : before.takeLast();
    // Some shells make an equals sign a word of its own.
    if (!before.isEmpty() && before.last() == QLatin1String("="))
        before.removeLast();
    const commandRow *named = before.isEmpty() ? nullptr : findCommand(before.first());
    const commandRow &command = named ? *named : commandTable().front();
    if (!before.isEmpty()) {
        if (const optionRow *option = optionWithArgument(command, before.last()))
            return namesFor(option->with, names);
    }
    if (typed.startsWith(QLatin1Char('-')))
        return optionNames(command);
    if (!before.isEmpty())
        return namesFor(command.with, names);
    return commandNames();
}
