"""What the makers of manual pages share: text as troff takes it."""


def escape(text):
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("`", "\\(ga")
    return "\\&" + text if text[:1] in (".", "'") else text


def paragraph(text):
    """A line a sentence, as man pages are written."""
    return escape(" ".join(text.split())).replace(". ", ".\n") + "\n"


def literal(text):
    return ".nf\n" + "".join(escape(line) + "\n" for line in text.split("\n")) + ".fi\n"


def tagged(tag, text):
    return ".TP\n.B " + escape(tag) + "\n" + (paragraph(text) if text.strip() else "\\&\n")


def heading(name, section, version, title):
    return f'.TH {name} {section} "" "libZYRsubtitle {version}" "{title}"\n'
