"""A film of 2,000 captions in two languages, as long as films are, with a few faults; and files that mean harm."""

CAPTIONS = 1000  # of each language
EVERY = 6500  # ms from one to the next
STAYS = 4000  # ms

HEAD = """<SAMI>
<HEAD>
<TITLE>The keeper's year</TITLE>
<STYLE TYPE="text/css">
<!--
.KRCC { Name: Korean; lang: ko-KR; SAMIType: CC; }
.ENCC { Name: English; lang: en-US; SAMIType: CC; }
-->
</STYLE>
</HEAD>
<BODY>
"""

# What the caption of that number says instead, in English.
FAULTS = {
    300: "A caption<br>of more<br>lines than<br>a box<br>has room<br>for: six<br>and a seventh",
    500: "A whale! \U0001F40B It waves back.",
}


def start_of(number):
    return 3000 + number * EVERY


def english(number):
    return FAULTS.get(number, f"The keeper counts ship {number},<br>and writes it down.")


def make_film():
    parts = [HEAD]
    for number in range(CAPTIONS):
        korean = f"등대지기 {number}: 배가 지나갑니다."
        parts.append(f"<SYNC Start={start_of(number)}><P Class=KRCC>{korean}\n<P Class=ENCC>{english(number)}\n")
        parts.append(f"<SYNC Start={start_of(number) + STAYS}><P Class=KRCC>&nbsp;\n<P Class=ENCC>&nbsp;\n")
    parts.append("</BODY>\n</SAMI>\n")
    return "".join(parts).replace("\n", "\r\n").encode("utf-8")


# Each would run, or end the element that holds it, if it reached the page as markup.
HOSTILE_TEXTS = [
    '</script><script>window.harmed = 1</script>',
    '<img src=x onerror="window.harmed = 1">',
    "<!--<script>", "]]></style><svg onload=window.harmed=1>",
    "&lt;script&gt;window.harmed = 1&lt;/script&gt;",
    "\u202egnp.exe\u2028 @DATA@ \\u003c",
]


def make_hostile():
    """As SubViewer, which knows no tags: all of it is text."""
    parts = ["[INFORMATION]\n[TITLE]</title><script>window.harmed = 1</script>\n[END INFORMATION]\n[SUBTITLE]\n",
             "[COLF]&HFFFFFF,[STYLE]bd,[SIZE]18,[FONT]Arial\n"]
    for at, text in enumerate(HOSTILE_TEXTS):
        parts.append(f"00:00:{2 * at:02}.00,00:00:{2 * at + 1:02}.00\n{text}\n\n")
    return "".join(parts).replace("\n", "\r\n").encode("utf-8")
