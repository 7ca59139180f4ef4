"""make_tool.py VERSION OUT ZYRSUB...: zyrsub(1) and the shells' completions, made from what --help says."""
import pathlib
import re
import subprocess
import sys

from roff import escape, heading, literal, paragraph, tagged

DESCRIPTION = """zyrsub shows what a set-top box makes of subtitle files. It is a client of libZYRsubtitle: what it prints
is what a player gets from the library, and what it draws is what the library's renderer draws. Results go to standard
output, messages to standard error."""

ENVIRONMENT = [
    ("ZYR_FONT", "TrueType file of the captions, instead of WenQuanYi Micro Hei."),
    ("ZYR_PROPERTIES", "File of system properties (key=value lines) that the renderer sees at start."),
    ("NO_COLOR", "Not empty: lint uses no colours on a terminal. Nothing else is ever coloured."),
]


class Help:
    """--help of the tool or of one command: its first line, its usage, and its blocks, each a title and lines."""

    def __init__(self, program, command):
        words = program + ([command] if command else []) + ["--help"]
        text = subprocess.run(words, check=True, capture_output=True, text=True).stdout
        self.command = command
        self.blocks = [["", []]]
        for line in text.rstrip("\n").split("\n"):
            title = re.match(r"^([A-Z][A-Za-z ]*):\s*$", line)
            if title:
                self.blocks.append([title[1], []])
            elif not line.strip() and self.blocks[-1][1]:
                self.blocks.append(["", []])
            elif line.strip():
                self.blocks[-1][1].append(line)
        first = self.blocks.pop(0)[1]
        self.usage = [re.sub(r"\(\d+x\)", " ...", line.removeprefix("Usage: ")) for line in first if line.startswith("Usage: ")]
        self.summary = " ".join(line for line in first if not line.startswith("Usage: "))

    def entries(self, title):
        """Pairs of what is written and what it does, of the blocks with a title."""
        pairs = []
        for line in [line for block in self.blocks if block[0] == title for line in block[1]]:
            name = re.match(r"^ {2}(\S.*?)(?: {2,}(.*))?$", line)
            if name and not line.startswith(" " * 20):
                pairs.append([name[1], name[2] or ""])
            elif pairs:
                pairs[-1][1] += " " + line.strip()
        return [(name, " ".join(text.split())) for name, text in pairs]

    def options(self):
        return [Option(*pair) for pair in self.entries("Options")]


class Option:
    """One option: its spellings, whether a value follows, and the values if they are listed."""

    def __init__(self, name, text):
        spelling, _, kind = name.partition(" ")
        self.name, self.text = name, text
        self.spellings = spelling.split(",")
        self.kind = re.sub(r"\b(?:Excludes|Needs|REQUIRED|Env)\b.*", "", kind).strip()
        listed = re.search(r"\{([^}]*)\}", self.kind)
        self.values = listed[1].split(",") if listed else []

    def is_file(self):
        return "FILE" in self.kind or "OUT" in self.kind or "DIR" in self.kind


def bare_kind(kind):
    """The kind of a value, without its default, its range, and what else --help says of the option there."""
    return re.sub(r"[:=].*|\b(?:Excludes|Needs|REQUIRED|Env)\b.*", "", kind).strip()


def block_roff(title, lines):
    if lines and lines[0].startswith("  "):
        return (f".PP\n{escape(title)}:\n" if title else "") + ".PP\n" + literal("\n".join(lines))
    return (f".PP\n{escape(title)}:\n" if title else ".PP\n") + paragraph(" ".join(lines))


def command_roff(command):
    out = f'.SS "zyrsub {command.command}"\n' + paragraph(command.summary + ".")
    out += "".join(".PP\n" + escape(usage) + "\n" for usage in command.usage)
    for title in ("Positionals", "Options"):
        for name, text in command.entries(title):
            spelling, _, kind = name.partition(" ")
            out += tagged(f"{spelling.replace(',', ', ')} {bare_kind(kind)}".strip(), text)
    for title, lines in command.blocks:
        if title not in ("Positionals", "Options"):
            out += block_roff(title, lines)
    return out


def man_page(top, commands, version):
    out = heading("zyrsub", 1, version, "User Commands")
    out += ".SH NAME\nzyrsub \\- look into subtitle files, convert them, and draw and play their captions\n"
    out += ".SH SYNOPSIS\n" + "".join(".br\n.B " + escape(one.usage[0]) + "\n" for one in commands)
    out += ".SH DESCRIPTION\n" + paragraph(DESCRIPTION)
    out += "".join(tagged(name, text) for name, text in top.entries("Options"))
    out += ".SH COMMANDS\n" + "".join(command_roff(command) for command in commands)
    exits = [block for block in top.blocks if block[0].startswith("Exit") or block[1][:1] and "Exit codes" in
             " ".join(block[1])]
    for title, lines in top.blocks:
        if title not in ("Options", "Subcommands") and [title, lines] not in exits:
            out += (f".SH {title.upper()}\n" if title else "") + block_roff("", lines)
    out += ".SH EXIT STATUS\n" + "".join(block_roff("", lines) for _, lines in exits)
    out += ".SH ENVIRONMENT\n" + "".join(tagged(*pair) for pair in ENVIRONMENT)
    return out + ".SH SEE ALSO\n.BR zyrsubtitle (5),\n.BR zyrSubtitle (3)\n"


def outputs_of(command):
    """Names that a line such as 'Outputs: lcd hdmi' lists."""
    listed = [line.split()[1:] for block in command.blocks for line in block[1] if line.startswith("Outputs: ")]
    return listed[0] if listed else []


def values_of(option, command, outputs):
    if option.kind == "FORMAT":  # "srt, vtt or txt [...]"
        return re.findall(r"\w+", option.text.split("[")[0].replace(" or ", ", "))
    return outputs if "--output" in option.spellings and option.kind == "NAME" else option.values


# Subtitle files and folders; where there are none, a movie may be meant.
BASH_FILES = r"""_zyrsub_subtitles()
{
    local all one
    mapfile -t all < <(compgen -f -- "$1")
    for one in "${all[@]}"; do
        case ${one,,} in
        *.smi | *.sami | *.srt | *.sub | *.ssa) COMPREPLY+=("$one") ;;
        *) [ ! -d "$one" ] || COMPREPLY+=("$one") ;;
        esac
    done
    [ ${#COMPREPLY[@]} -gt 0 ] || COMPREPLY=("${all[@]}")
}

"""


def bash(top, commands, outputs):
    names = " ".join(command.command for command in commands)
    out = "# Completions of zyrsub for bash.\n" + BASH_FILES + "_zyrsub()\n{\n"
    out += '    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} words\n    COMPREPLY=()\n'
    out += '    if [ "$COMP_CWORD" -eq 1 ]; then\n'
    out += f'        words="{names} {" ".join(s for option in top.options() for s in option.spellings)}"\n'
    out += '        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")\n        return\n    fi\n'
    out += '    case ${COMP_WORDS[1]}:$prev in\n'
    for command in commands:
        for option in command.options():
            which = " | ".join(f"{command.command}:{spelling}" for spelling in option.spellings)
            values = values_of(option, command, outputs)
            if values:
                out += f'    {which}) words="{" ".join(values)}" ;;\n'
            elif option.kind and not option.is_file():
                out += f"    {which}) return ;;\n"
            elif option.kind:
                out += f'    {which}) mapfile -t COMPREPLY < <(compgen -f -- "$cur"); return ;;\n'
    out += "    *)\n        case ${COMP_WORDS[1]} in\n"
    for command in commands:
        spellings = " ".join(spelling for option in command.options() for spelling in option.spellings)
        out += f'        {command.command}) words="{spellings}" ;;\n'
    out += "        *) return ;;\n        esac\n"
    out += '        if [[ $cur != -* ]]; then _zyrsub_subtitles "$cur"; return; fi\n        ;;\n'
    out += '    esac\n    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")\n}\n'
    return out + "complete -o filenames -F _zyrsub zyrsub\n"


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def fish(top, commands, outputs):
    out = "# Completions of zyrsub for fish.\n"
    for command in commands:
        out += f"complete -c zyrsub -n __fish_use_subcommand -f -a {command.command} -d {quoted(command.summary)}\n"
        for option in command.options():
            out += f"complete -c zyrsub -n '__fish_seen_subcommand_from {command.command}'"
            for spelling in option.spellings:
                out += (" -l " if spelling.startswith("--") else " -s ") + spelling.lstrip("-")
            values = values_of(option, command, outputs)
            out += f" -x -a {quoted(' '.join(values))}" if values else " -r" if option.kind else ""
            out += f" -d {quoted(option.text)}\n"
    return out


def zsh(top, commands, outputs):
    out = "#compdef zyrsub\n# Completions of zyrsub for zsh.\nlocal -a commands\ncommands=(\n"
    out += "".join(f"    {quoted(one.command + ':' + one.summary.replace(':', ''))}\n" for one in commands)
    out += ')\nif (( CURRENT == 2 )); then\n    _describe command commands\n    return\nfi\n'
    out += "local which=$words[2]\nshift words\n(( CURRENT-- ))\ncase $which in\n"
    for command in commands:
        out += f"{command.command})\n    _arguments"
        for option in command.options():
            text = re.sub(r"[\[\]:]", "", option.text)
            values = values_of(option, command, outputs)
            value = f":value:({' '.join(values)})" if values else ":file:_files" if option.is_file() else ":value:"
            for spelling in option.spellings:
                out += " \\\n        " + quoted(f"*{spelling}[{text}]" + (value if option.kind else ""))
        out += " \\\n        '*:movie:_files -g \"*.(#i)(smi|sami|srt|sub|ssa)(-.)\"'\n    ;;\n"
    return out + "esac\n"


def main():
    version, target, program = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3:]
    top = Help(program, "")
    commands = [Help(program, name) for name, _ in top.entries("Subcommands")]
    outputs = next((found for found in map(outputs_of, commands) if found), [])
    target.mkdir(parents=True, exist_ok=True)
    (target / "zyrsub.1").write_text(man_page(top, commands, version))
    (target / "zyrsub.bash").write_text(bash(top, commands, outputs))
    (target / "zyrsub.fish").write_text(fish(top, commands, outputs))
    (target / "_zyrsub").write_text(zsh(top, commands, outputs))


main()
