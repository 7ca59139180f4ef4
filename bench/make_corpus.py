"""The files that script/bench reads: made up, the same ones on every machine.

    make_corpus.py FOLDER SIZE NAME...      writes FOLDER/NAME-SIZE.ENDING; SIZE like 100k, 1m, 10m
    make_corpus.py --list                   the names

Plain names are FORMAT-ENCODING: captions as movies have them, with their share of markup. FORMAT-odd has something in every
entry that files do not usually have. FORMAT-order-NAME are entries in unusual orders, FORMAT-hostile-NAME bodies of the kind
that makes a reader work. Lines end in CR LF unless the name says otherwise.
"""
import os
import random
import sys

ENGLISH = """a about again all always and answer are at back be been before better boat bring but by call came can city come could
day did do door down even ever far father find fire first for from give go good had hand have he hear her here him his home
house how I if in into is it just keep know last leave letter life light like little long look love made make man may me
mother must my name never new night no not nothing now of old on once one only or other our out over people place put read
river road said saw say school sea see she should sleep so some something soon stay still stop street take talk tell than
that the their them then there these they thing think this time to today told too train two under until up very wait want
was water way we well went were what when where which while who why will window winter with work world would year yes you""".split()
KOREAN = """가끔 가족을 강가에 거짓말 걱정하지 계속 고향으로 곧바로 그날 그대로 그래도 그런데 그리고 금방 기억해 나도 나무 내게 너는
누구를 눈이 다녀올게 다시 달빛이 당신이 대답해 도와줘 돌아온 되었다 듣고 따뜻한 때문에 라디오 마침내 말했다 먼저 모두 문을
물어봐 바람이 밖에서 배를 벌써 보고 부탁해 비가 사람은 생각이 서둘러 선물을 소리가 시작된 아까 아니라 약속을 어두운 언니와
여름 역에서 열차가 오래전 올해 우산을 위해서 이름은 이유가 일어나 잊었니 잠들기 저녁에 전화를 정말로 조금만 지나면 찾았다
창가에 천천히 커피를 편지를 하늘은 하루만 학교는 함께 혼자 환하게 흔들리는 힘을""".split()
CODECS = {"ascii": "ascii", "utf8": "utf-8", "cp949": "cp949", "utf16": "utf-16-le"}
ENDINGS = {"srt": "srt", "sub": "sub", "smi": "smi", "smi2": "smi", "smi2sync": "smi", "ssa": "ssa"}
HEADS = {
    "srt": "",
    "sub": "[INFORMATION]\n[TITLE]A long evening\n[AUTHOR]nobody\n[END INFORMATION]\n[SUBTITLE]\n"
           "[COLF]&HFFFFFF,[STYLE]no,[SIZE]18,[FONT]Arial\n",
    "smi": "<SAMI>\n<HEAD>\n<TITLE>A long evening</TITLE>\n<STYLE TYPE=\"text/css\"><!--\n"
           "P { font-family: sans-serif; text-align: center; color: white; }\n"
           ".KRCC { Name: Korean; lang: ko-KR; SAMIType: CC; }\n.ENCC { Name: English; lang: en-US; SAMIType: CC; }\n"
           "--></STYLE>\n</HEAD>\n<BODY>\n",
    "ssa": "[Script Info]\nTitle: A long evening\nScriptType: v4.00\n\n[v4 Styles]\n"
           "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, TertiaryColour, BackColour, Bold, Italic, "
           "BorderStyle, Outline, Shadow, Alignment, MarginL, MarginR, MarginV, AlphaLevel, Encoding\n"
           "Style: Default,Arial,20,16777215,65535,65535,0,-1,0,1,2,2,2,30,30,10,0,0\n"
           "Style: Song,Arial,18,&H00FFFF,65535,65535,0,0,1,1,2,0,6,30,30,10,0,0\n",
}
EVENTS = "\n[Events]\nFormat: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n"
SPAN_MS = {"srt": 95 * 3600000, "sub": 95 * 3600000, "smi": 70 * 3600000, "ssa": 9 * 3600000}


def clock(ms, comma):
    return "%02d:%02d:%02d%s%03d" % (ms // 3600000, ms // 60000 % 60, ms // 1000 % 60, comma, ms % 1000)


def short_clock(ms):
    return clock(ms, ".")[:-1]


def line(rnd, korean):
    """One line of a caption: 12 to 34 characters of English, 5 to 16 of Korean."""
    words, length, limit = [], 0, rnd.randint(5, 14) if korean else rnd.randint(12, 30)
    while length < limit:
        words.append(rnd.choice(KOREAN if korean else ENGLISH))
        length += len(words[-1]) + 1
    return " ".join(words) + rnd.choice([".", ".", "?", "!", "...", ",", ""])


def caption(rnd, korean):
    """The lines of a caption: one or two, rarely three; in a Korean file a tenth of them English."""
    count = rnd.choices([1, 2, 3], [55, 41, 4])[0]
    lines = [line(rnd, korean and rnd.random() < 0.9) for _ in range(count)]
    return ["- " + each for each in lines] if count == 2 and rnd.random() < 0.1 else lines


def mark_up(rnd, lines):
    """Tags on a tenth of the captions, an entity in one of thirty."""
    chance = rnd.random()
    if chance < 0.07:
        lines = ["<i>" + lines[0]] + lines[1:]
        lines[-1] += "</i>"
    elif chance < 0.10:
        lines = ['<font color="#%06x">%s' % (rnd.randrange(1 << 24), lines[0])] + lines[1:]
        lines[-1] += "</font>"
    if rnd.random() < 0.03:
        lines[0] = lines[0].replace(" ", rnd.choice([" &amp; ", "&nbsp;", " &quot;"]), 1)
    return lines


def sync(ms, name, text):
    return "<SYNC Start=%d><P Class=%s>\n%s\n" % (ms, name, text)


def srt_entry(rnd, number, ms, length, korean):
    lines = mark_up(rnd, caption(rnd, korean))
    return "%d\n%s --> %s\n%s\n\n" % (number, clock(ms, ","), clock(ms + length, ","), "\n".join(lines))


def sub_entry(rnd, number, ms, length, korean):
    return "%s,%s\n%s\n\n" % (short_clock(ms), short_clock(ms + length), "[br]".join(caption(rnd, korean)))


def smi_entry(rnd, number, ms, length, korean):
    text = sync(ms, "KRCC", "<br>".join(mark_up(rnd, caption(rnd, korean))))
    return text + (sync(ms + length, "KRCC", "&nbsp;") if rnd.random() < 0.8 else "")


def smi2_entry(rnd, number, ms, length, korean):
    """Two languages in one SYNC."""
    korean_text, english_text = ("<br>".join(mark_up(rnd, caption(rnd, each))) for each in (korean, False))
    text = "<SYNC Start=%d><P Class=KRCC>%s\n<P Class=ENCC>%s\n" % (ms, korean_text, english_text)
    return text + "<SYNC Start=%d><P Class=KRCC>&nbsp;\n<P Class=ENCC>&nbsp;\n" % (ms + length)


def smi2sync_entry(rnd, number, ms, length, korean):
    """Two languages, each in a SYNC of its own, the second often a little later."""
    text = sync(ms, "KRCC", "<br>".join(mark_up(rnd, caption(rnd, korean))))
    text += sync(ms + rnd.choice([0, 0, 20, 40]), "ENCC", "<br>".join(mark_up(rnd, caption(rnd, False))))
    return text + sync(ms + length, "KRCC", "&nbsp;") + sync(ms + length, "ENCC", "&nbsp;")


def dialogue(ms, length, style, text):
    return "Dialogue: Marked=0,%s,%s,%s,NTP,0000,0000,0000,,%s\n" % (
        short_clock(ms)[1:], short_clock(ms + length)[1:], style, text)


def ssa_entry(rnd, number, ms, length, korean):
    lines = caption(rnd, korean)
    chance = rnd.random()
    if chance < 0.07:
        lines[0] = "{\\i1}" + lines[0]
    elif chance < 0.10:
        lines[0] = "{\\c&H%06X&}%s" % (rnd.randrange(1 << 24), lines[0])
        lines[-1] += "{\\r}"
    return dialogue(ms, length, "Song" if rnd.random() < 0.1 else "Default", "\\N".join(lines))


ENTRIES = {"srt": srt_entry, "sub": sub_entry, "smi": smi_entry, "smi2": smi2_entry, "smi2sync": smi2sync_entry,
           "ssa": ssa_entry}


def regular(kind, encoding, size):
    """Entries at an even pace until the file has its size."""
    rnd = random.Random("%s-%s-%d" % (kind, encoding, size))
    korean, codec, form = encoding != "ascii", CODECS[encoding], kind[:3]
    head = HEADS[form] + (EVENTS if form == "ssa" else "")
    tail = "</BODY>\n</SAMI>\n" if form == "smi" else ""
    measure = [len(ENTRIES[kind](rnd, 1000, 3600000, 900, korean).replace("\n", "\r\n").encode(codec)) for _ in range(300)]
    step = min(4000, SPAN_MS[form] * sum(measure) // len(measure) // size) // 10 * 10
    parts, done, number = [head], 0, 0
    while done < size - 200 or number == 0:
        number += 1
        text = ENTRIES[kind](rnd, number, number * step, step * 3 // 4 // 10 * 10, korean)
        parts.append(text)
        done += len(text.replace("\n", "\r\n").encode(codec))
    return "".join(parts) + tail


def odd(kind, size):
    """Each entry has one thing that the files people watch do not have."""
    rnd = random.Random("odd-%s-%d" % (kind, size))
    # <SYNC, newlines and braces stay out: the entry itself is whole.
    bodies = [lambda text: text.replace(" ", " & ", 1), lambda text: text.replace(" ", "<b", 1), lambda text: text + " <unknown>",
              lambda text: "\t" + text.replace(" ", "\t", 1), lambda text: text.replace(" ", " &none; ", 1),
              lambda text: " ".join([text] * 5), lambda text: text + "\x01"]
    if kind == "ssa":
        bodies = [lambda text: "{\\pos(10,20)}" + text, lambda text: text.replace(" ", "\t", 1), lambda text: text + "{open",
                  lambda text: " ".join([text] * 5), lambda text: text + "\x01"]
    if kind == "sub":
        bodies = [lambda text: text.replace(" ", "\t", 1), lambda text: text + " [x]", lambda text: " ".join([text] * 5),
                  lambda text: text + "\x01"]
    step = SPAN_MS[kind] // (size // 60)
    parts, done, number = [HEADS[kind] + (EVENTS if kind == "ssa" else "")], 0, 0
    while done < size - 200:
        number += 1
        ms, text = number * step, rnd.choice(bodies)(line(rnd, False))
        parts.append({"srt": lambda: "%d\n%s --> %s\n%s\n\n" % (number, clock(ms, ","), clock(ms + step, ","), text),
                      "sub": lambda: "%s,%s\n%s\n\n" % (short_clock(ms), short_clock(ms + step), text),
                      "smi": lambda: sync(ms, "KRCC", text),
                      "ssa": lambda: dialogue(ms, step, "Default", text)}[kind]())
        done += len(parts[-1]) + parts[-1].count("\n")
    return "".join(parts)


def reorder(name, count, rnd):
    """Places of the entries of a file, each a time slot."""
    slots = list(range(count))
    if name == "shuffled":
        rnd.shuffle(slots)
    elif name == "descending":
        slots.reverse()
    elif name == "pairs":
        slots = [min(slot ^ 1, count - 1) for slot in slots]
    elif name == "runs":
        slots = slots[0::2] + slots[1::2]
    return slots


def smi_order(name, size):
    """SYNC tags in an order, and the same tags with further classes."""
    rnd = random.Random("smi-order-%d" % size)
    slots = reorder(name, size // 80, rnd)
    classes, sparse = ["KRCC"] * len(slots), ["ENCC", "FRCC", "JPCC", "DECC"]
    first = {"sparsefront": 40, "sparseback": len(slots) - 200}.get(name)
    for index in range(160 if first is not None else 0):
        classes[first + index] = sparse[index % 4]
    second = "<P Class=ENCC>" if name == "twop" else ""
    parts = [sync(1000 + slot * 50, name_, line(rnd, False) + second) for slot, name_ in zip(slots, classes)]
    if name == "twop":
        parts.append(sync(2000 + len(slots) * 50, "ENCC", line(rnd, False)))
    return HEADS["smi"] + "".join(parts) + "</BODY>\n</SAMI>\n"


def ssa_order(name, size):
    rnd = random.Random("ssa-order-%d" % size)
    share = 2 if name == "styles" else 1
    slots = reorder(name, size // share // 105, rnd)
    styles = ["S%06d" % number for number in range(size // 2 // 75)] if name == "styles" else ["Default", "Song"]
    head = HEADS["ssa"]
    if name == "styles":
        head += "".join("Style: %s,Arial,20,16777215,65535,255,0,-1,0,1,2,0,2,10,10,10,0,0\n" % each for each in styles)
    step = max(10, min(400, SPAN_MS["ssa"] // len(slots)) // 10 * 10)
    return head + EVENTS + "".join(
        dialogue(1000 + slot * step, step, rnd.choice(styles[-5000:]), line(rnd, False) + "\\N" + line(rnd, False))
        for slot in slots)


def srt_hostile(name, size):
    """Bodies that cost a reader more than text does."""
    rnd = random.Random("srt-hostile-%d" % size)
    if name == "one":
        return "1\n00:00:01,000 --> 00:00:02,000\n" + "word " * (size // 5) + "\n\n"
    body = {"entities": "&thorn;" * 30 + "\n" + "&Thorn;&xyz;" * 9, "tags": "<font color=aqua>a</font><b>b</b>" * 9,
            "open": "<i>" * 50 + "x" + "</i>" * 50, "restarts": "<a" * 250, "cr": "x\rx" * 80, "tiny": ".",
            "lines": "\n".join("line %d" % number for number in range(150)), "lf": "a line\nand another"}.get(name)
    parts, done, number = [], 0, 0
    while done < size:
        number += 1
        text = body if body is not None else line(rnd, False)
        if name == "detect" and number == 1:
            text = "".join(KOREAN)[:10]  # as many as the detection still takes for chance
        parts.append("%d\n%s --> %s\n%s\n\n" % (number, clock(number * 200, ","), clock(number * 200 + 150, ","), text))
        done += len(parts[-1]) + parts[-1].count("\n")
    return "".join(parts)


def sub_hostile(name, size):
    rnd = random.Random("sub-hostile-%d" % size)
    return HEADS["sub"] + "".join(sub_entry(rnd, number, number * 200, 150, False) + "\n" * 6 for number in range(1, size // 70))


def make_names():
    names = ["%s-%s" % (kind, encoding) for kind in ENTRIES for encoding in CODECS]
    names.append("srt-lf")  # srt-ascii with other line ends
    names += ["%s-odd" % kind for kind in ("srt", "sub", "smi", "ssa")]
    names += ["smi-order-" + each for each in ("plain", "shuffled", "pairs", "descending", "sparsefront", "sparseback", "twop")]
    names += ["ssa-order-" + each for each in ("plain", "shuffled", "pairs", "descending", "runs", "styles")]
    names += ["srt-hostile-" + each for each in ("entities", "tags", "open", "restarts", "cr", "tiny", "lines", "lf", "one", "detect")]
    return names + ["sub-hostile-blank"]


def make_file(name, size):
    """The bytes of a file."""
    kind, what, *rest = name.split("-")
    if what in CODECS or what == "lf":
        text, codec = regular(kind, what.replace("lf", "ascii"), size), CODECS.get(what, "ascii")
    else:
        make = {"odd": lambda: odd(kind, size), "order": lambda: {"smi": smi_order, "ssa": ssa_order}[kind](rest[0], size),
                "hostile": lambda: {"srt": srt_hostile, "sub": sub_hostile}[kind](rest[0], size)}
        text, codec = make[what](), "utf-8"
    if name not in ("srt-lf", "srt-hostile-lf"):
        text = text.replace("\n", "\r\n")
    return (b"\xff\xfe" if codec == "utf-16-le" else b"") + text.encode(codec, "replace")


def get_bytes(size):
    return int(float(size[:-1]) * {"k": 1000, "m": 1000000}[size[-1]])


def write_file(folder, name, size):
    """Make a file unless it is there. Returns its path."""
    path = os.path.join(folder, "%s-%s.%s" % (name, size, ENDINGS[name.split("-")[0]]))
    if not os.path.exists(path):
        os.makedirs(folder, exist_ok=True)
        with open(path + ".part", "wb") as file:
            file.write(make_file(name, get_bytes(size)))
        os.rename(path + ".part", path)
    return path


if __name__ == "__main__":
    if sys.argv[1:] == ["--list"]:
        print("\n".join(make_names()))
    elif len(sys.argv) < 4 or not set(sys.argv[3:]) <= set(make_names()):
        sys.exit(__doc__)
    else:
        for each in sys.argv[3:]:
            print(write_file(sys.argv[1], each, sys.argv[2]))
