// The table of codes. A code keeps its meaning for good: a new rule takes a new number.
#include "finding_rules.h"

#include <iterator>
#include <string_view>

namespace
{

constexpr uint32_t LOST = ZYR_FINDING_LOST;
constexpr uint32_t CHANGED = ZYR_FINDING_CHANGED;
constexpr uint32_t DOUBTFUL = ZYR_FINDING_DOUBTFUL;

constexpr RuleRow RULES[] = {
    {E_RULE_FILE_REFUSED, "ZYR-FILE-001", LOST, "all", "the box does not open the file",
     "The ending of the name alone tells the box what to read a file as. A file that is empty, or that does "
     "not hold "
     "what its ending says, is refused whole. A SubViewer file must have the field [SUBTITLE], in capitals, "
     "before "
     "its first time line.",
     "frames.sub", "{100}{150}Hello\n{160}{210}World\n"},
    {E_RULE_FILE_ENDING, "ZYR-FILE-002", LOST, "all", "no box looks for a file with this ending",
     "Beside a movie the box tries the endings .SMI, .smi, .SAMI, .sami, .SRT, .srt, .SUB, .sub, .SSA and "
     ".ssa, and "
     "no other. Give the file the ending of its format; a script of version 4+ must become one of version 4.",
     "movie.txt", "1\n00:00:01,000 --> 00:00:02,000\nHello\n\n"},
    {E_RULE_FILE_LINE_ENDS, "ZYR-FILE-003", LOST, "SubRip, SubViewer, SSA",
     "line ends that the box does not know",
     "A line ends in CR LF (0D 0A). A bare LF or CR ends no line: times and texts run together, and most "
     "captions "
     "are lost. The finding tells how much of the file is left. Save the file with CR LF line ends.",
     "movie.srt", "1\r00:00:01,000 --> 00:00:02,000\rHello\r\r2\r00:00:03,000 --> 00:00:04,000\rWorld\r\r"},
    {E_RULE_FILE_CUT_BY_ENDS, "ZYR-FILE-004", LOST, "SubRip, SubViewer, SSA",
     "this caption is lost to the line ends",
     "With line ends of CR LF this caption would be shown. As the file is, the box does not show it, or not "
     "at its "
     "time, or not whole.",
     "movie.srt", "1\r00:00:01,000 --> 00:00:02,000\rHello\r\r2\r00:00:03,000 --> 00:00:04,000\rWorld\r\r"},
    {E_RULE_FILE_OTHER_ENDS, "ZYR-FILE-005", DOUBTFUL, "all", "line ends other than CR LF that do no harm",
     "Here nothing depends on them: in SAMI line ends of the file mean nothing. Other players and tools may "
     "differ.",
     "movie.smi", "<SYNC Start=1000><P>Hello\r<SYNC Start=2000><P>&nbsp;\r"},
    {E_RULE_FILE_UNREADABLE, "ZYR-FILE-006", CHANGED, "all",
     "bytes that are no characters of the file's encoding",
     "The box takes a file to be in one encoding: that of its byte order mark, else UTF-8 when enough of it "
     "is, else "
     "a code page. What the encoding does not have shows as other characters or not at all. Save the file in "
     "one "
     "encoding, best UTF-8 with a byte order mark.",
     "movie.srt",
     "\xEF\xBB\xBF"
     "1\n00:00:01,000 --> 00:00:02,000\nCaf\xE9 au lait\n\n"},
    {E_RULE_FILE_CODE_PAGE, "ZYR-FILE-007", DOUBTFUL, "all", "the file does not tell its code page",
     "Its bytes are handed on in whatever code page the box is set to. The one used here is a guess, or the "
     "one "
     "that was asked for. Save the file as UTF-8 with a byte order mark, which says what it is.",
     "movie.srt", "1\n00:00:01,000 --> 00:00:02,000\nCaf\xE9 au lait\n\n"},
    {E_RULE_FILE_NUL, "ZYR-FILE-008", CHANGED, "all", "the character 0 in the text",
     "The box drops it or breaks a word at it. It is usually what is left of a damaged file, or of UTF-16 "
     "text "
     "without a byte order mark.",
     "movie.srt", "1\n00:00:01,000 --> 00:00:02,000\nHel\1lo\n\n"},
    {E_RULE_FILE_LOG, "ZYR-FILE-009", DOUBTFUL, "all", "the box writes an error to its log here",
     "Nothing else was found that tells why. The message is the parser's own.", "movie.srt",
     "1\n00:00:01,000 --> 00:00:02,000\nHello</b>\n\n"},

    {E_RULE_TEXT_SEVENTH_LINE, "ZYR-TEXT-001", LOST, "all", "text behind the sixth line",
     "A caption has six lines at most, counted after long lines have been wrapped. What does not fit is "
     "dropped. "
     "Split the caption in time.",
     "movie.srt", "1\n00:00:01,000 --> 00:00:09,000\none\ntwo\nthree\nfour\nfive\nsix\nseven\n\n"},
    {E_RULE_TEXT_WRAPPED, "ZYR-TEXT-002", CHANGED, "all", "a line of more than 64 characters",
     "A line takes 64 characters. A longer one is wrapped at the last blank before that, so that the caption "
     "has "
     "more lines than it was given, and perhaps a last line of one word.",
     "movie.srt",
     "1\n00:00:01,000 --> 00:00:05,000\nThis line is a good deal longer than the sixty-four characters which "
     "fit\n\n"},
    {E_RULE_TEXT_WORD_CUT, "ZYR-TEXT-003", CHANGED, "all", "a word cut in two",
     "A word of more than 64 characters, such as text written without blanks, is cut where the line is full.",
     "movie.srt",
     "1\n00:00:01,000 --> 00:00:05,000\n"
     "Donaudampfschifffahrtselektrizitaetenhauptbetriebswerkbauunterbeamtengesellschaft\n\n"},
    {E_RULE_TEXT_ASTRAL, "ZYR-TEXT-004", LOST, "all", "a character beyond U+FFFF",
     "The box holds text in units of 16 bits and drops characters that need two, such as emoji, in UTF-8 "
     "text. In "
     "UTF-16 text the two halves come out as two wrong characters.",
     "movie.srt",
     "\xEF\xBB\xBF"
     "1\n00:00:01,000 --> 00:00:02,000\nGood \xF0\x9F\x98\x80 morning\n\n"},
    {E_RULE_TEXT_MISSING, "ZYR-TEXT-005", LOST, "all", "text that is not shown",
     "The file has this text in a caption, and what the box makes of the caption does not have it.",
     "movie.ssa",
     "[Script Info]\nScriptType: v4.00\n[Events]\n"
     "Dialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,Hello {never closed\n"},
    {E_RULE_TEXT_ADDED, "ZYR-TEXT-006", CHANGED, "all", "text that is shown although it is no text",
     "The box does not know this as markup and shows it as it stands.", "movie.sub",
     "[SUBTITLE]\n00:00:01.00,00:00:02.00\nHello\n[br]World\n\n"},
    {E_RULE_TEXT_JOINED, "ZYR-TEXT-007", CHANGED, "all", "two words run together",
     "In SAMI a line end of the file is nothing, not even a blank: only <br> breaks a line. Put a blank or "
     "<br> "
     "between the words.",
     "movie.smi", "<SYNC Start=1000><P>Good\nmorning\n<SYNC Start=2000><P>&nbsp;\n"},
    {E_RULE_TEXT_TAG, "ZYR-TEXT-008", CHANGED, "SubRip, SAMI", "a tag that the box does not know",
     "It is dropped with all that stands between < and >. Text in angle brackets needs &lt; and &gt;. Note "
     "that "
     "<br/> is not known either: write <br>.",
     "movie.srt", "1\n00:00:01,000 --> 00:00:02,000\n<John> Hello\n\n"},
    {E_RULE_TEXT_ENTITY, "ZYR-TEXT-009", CHANGED, "SubRip, SAMI", "an entity that stays as it is written",
     "Known are the entities of HTML 4.01 in its letter case, without &bull; &hellip; and some others, and "
     "decimal "
     "numbers as &#233;. Hexadecimal numbers and capitals, as in &AMP;, are not. Write the character itself.",
     "movie.srt", "1\n00:00:01,000 --> 00:00:02,000\nWait&hellip;\n\n"},
    {E_RULE_TEXT_OPEN_TAG, "ZYR-TEXT-010", LOST, "SubRip, SAMI", "a \"<\" that swallows text",
     "A \"<\" begins a tag, also before a blank or a digit, and the tag goes on to the next \">\". Up to "
     "there, or to "
     "the caption's end, nothing is shown. Write &lt; for the character.",
     "movie.srt", "1\n00:00:01,000 --> 00:00:02,000\nI <3 you\n\n"},
    {E_RULE_TEXT_COLOUR, "ZYR-TEXT-011", CHANGED, "SubRip, SAMI", "a colour that the box does not know",
     "A colour is one of 141 names, or six hexadecimal digits with or without #. Any other is left out.",
     "movie.srt", "1\n00:00:01,000 --> 00:00:02,000\n<font color=#FFF>Hello</font>\n\n"},
    {E_RULE_TEXT_OVERRIDE, "ZYR-TEXT-012", CHANGED, "SubRip, SAMI", "an SSA override in another format",
     "Overrides in braces, as {\\an8}, mean something in SSA alone. Elsewhere the box shows them as text.",
     "movie.srt", "1\n00:00:01,000 --> 00:00:02,000\n{\\an8}Hello\n\n"},

    {E_RULE_TIME_OVERLAP, "ZYR-TIME-001", DOUBTFUL, "SubRip, SubViewer, SSA",
     "it begins before the one before ends",
     "The box hands captions out one by one: the later takes the place of the earlier, which is then seen "
     "for a "
     "shorter time than the file says.",
     "movie.srt", "1\n00:00:01,000 --> 00:00:05,000\nHello\n\n2\n00:00:03,000 --> 00:00:06,000\nWorld\n\n"},
    {E_RULE_TIME_ORDER, "ZYR-TIME-002", CHANGED, "SubRip, SubViewer",
     "it begins before the one before begins",
     "The box reads captions in the order of the file. This one comes when its time may be over, and a seek "
     "stops at "
     "the first caption that begins too late. Sort the file by time.",
     "movie.srt", "1\n00:00:05,000 --> 00:00:06,000\nWorld\n\n2\n00:00:01,000 --> 00:00:02,000\nHello\n\n"},
    {E_RULE_TIME_NEVER, "ZYR-TIME-003", LOST, "all", "it ends when it begins, or before",
     "The caption is handed out, but there is no moment at which it is to be shown.", "movie.srt",
     "1\n00:00:05,000 --> 00:00:02,000\nHello\n\n"},
    {E_RULE_TIME_EMPTY, "ZYR-TIME-004", DOUBTFUL, "SubRip, SubViewer, SSA", "a caption without text",
     "It shows nothing, and clears what is on screen.", "movie.srt", "1\n00:00:01,000 --> 00:00:02,000\n\n"},
    {E_RULE_TIME_LONG, "ZYR-TIME-005", DOUBTFUL, "all", "it stays on screen for very long",
     "More than 15 seconds, or what was asked for: perhaps one of its times is mistyped.", "movie.srt",
     "1\n00:00:01,000 --> 00:10:02,000\nHello\n\n"},
    {E_RULE_TIME_FAST, "ZYR-TIME-006", DOUBTFUL, "all", "too fast to read",
     "More than 25 characters a second, or what was asked for.", "movie.srt",
     "1\n00:00:01,000 --> 00:00:01,500\nNobody reads as much as this in half a second\n\n"},
    {E_RULE_TIME_NO_END, "ZYR-TIME-007", DOUBTFUL, "SAMI", "nothing takes it off the screen",
     "A SAMI caption ends where the next one of its language begins. Behind the last one put a SYNC with "
     "&nbsp;, or "
     "an END attribute into its SYNC.",
     "movie.smi", "<SYNC Start=1000><P>Hello\n</BODY>\n"},

    {E_RULE_SRT_NUMBERS, "ZYR-SRT-001", CHANGED, "SubRip", "a time line that is read otherwise",
     "Of a time line the box takes the numbers, whatever stands between them: the first four are hours, "
     "minutes, "
     "seconds and milliseconds of the start, the next four those of the end. With fewer numbers, as without "
     "hours or "
     "without milliseconds, all of them mean something else. Write 00:00:01,000 --> 00:00:02,000.",
     "movie.srt", "1\n00:01 --> 00:02\nHello\n\n"},
    {E_RULE_SRT_FRACTION, "ZYR-SRT-002", CHANGED, "SubRip", "a fraction without three digits",
     "The number behind the seconds is a count of milliseconds, whatever its width: 01,5 is 1.005 seconds. "
     "Write "
     "01,500.",
     "movie.srt", "1\n00:00:01,5 --> 00:00:02,5\nHello\n\n"},
    {E_RULE_SRT_MORE_NUMBERS, "ZYR-SRT-003", DOUBTFUL, "SubRip", "numbers behind the times",
     "More than eight numbers on a time line, as coordinates: they are not used, and logged.", "movie.srt",
     "1\n00:00:01,000 --> 00:00:02,000 X1:40 X2:600 Y1:20 Y2:50\nHello\n\n"},
    {E_RULE_SRT_NO_NUMBER_LINE, "ZYR-SRT-004", CHANGED, "SubRip", "an entry without its number",
     "The first digits of an entry are taken for its number. Where there is none, the hours of the start "
     "are, and "
     "all its times are wrong. Put a line with any number before the time line.",
     "movie.srt", "00:00:01,000 --> 00:00:02,000\nHello\n\n"},
    {E_RULE_SRT_SWALLOWED, "ZYR-SRT-005", LOST, "SubRip", "an entry inside another",
     "Only an empty line ends an entry; a line with a blank on it is not empty. Without one this entry's "
     "number, "
     "times and text are shown as text of the entry before, as far as it has room.",
     "movie.srt", "1\n00:00:01,000 --> 00:00:02,000\nHello\n2\n00:00:03,000 --> 00:00:04,000\nWorld\n\n"},
    {E_RULE_SRT_BEHIND_EMPTY, "ZYR-SRT-006", LOST, "SubRip", "text behind an empty line",
     "An empty line ends the entry. What follows is passed over up to the next digit. A line with &nbsp; on "
     "it can "
     "stand in for an empty one.",
     "movie.srt", "1\n00:00:01,000 --> 00:00:02,000\nHello\n\nWorld\n\n"},
    {E_RULE_SRT_STRAY_DIGIT, "ZYR-SRT-007", CHANGED, "SubRip", "a digit between entries",
     "Behind an empty line the first digit begins an entry, whatever it stands in. This one makes an entry "
     "that is "
     "none, which may take the times of the next one.",
     "movie.srt",
     "1\n00:00:01,000 --> 00:00:02,000\nHello\n\nin 1999\n\n2\n00:00:03,000 --> 00:00:04,000\nWorld\n\n"},
    {E_RULE_SRT_TIME_LINE_TEXT, "ZYR-SRT-008", LOST, "SubRip", "text on the time line",
     "The line with the times is never shown. Put the text on a line of its own.", "movie.srt",
     "1\n00:00:01,000 --> 00:00:02,000 Hello\n\n"},
    {E_RULE_SRT_NOT_SHOWN, "ZYR-SRT-009", LOST, "SubRip", "an entry that is not shown",
     "The box makes no caption of this time line.", "movie.srt",
     "1\n00:00:01,000 --> 00:00:02,000\nHello\n\n2\n00:00:03,000 --> 00:00:04,000"},

    {E_RULE_SMI_START_QUOTED, "ZYR-SMI-001", LOST, "SAMI", "START in quotation marks",
     "The value must begin with a digit. A SYNC whose START is in quotation marks is passed over, and its "
     "text joins "
     "nothing.",
     "movie.smi", "<SYNC Start=\"1000\"><P>Hello\n<SYNC Start=2000><P>&nbsp;\n"},
    {E_RULE_SMI_START_NOT_FIRST, "ZYR-SMI-002", LOST, "SAMI", "START is not the first attribute",
     "A SYNC is looked at up to its first attribute. Where that is not START, the SYNC is passed over.",
     "movie.smi", "<SYNC End=2000 Start=1000><P>Hello\n<SYNC Start=3000><P>&nbsp;\n"},
    {E_RULE_SMI_START_UNREADABLE, "ZYR-SMI-003", LOST, "SAMI", "a SYNC without a time that can be read",
     "START must be there, with digits alone (milliseconds), and a blank or > behind them. Any other SYNC is "
     "passed "
     "over.",
     "movie.smi", "<SYNC Start=1000ms><P>Hello\n<SYNC Start=2000><P>&nbsp;\n"},
    {E_RULE_SMI_END_UNREADABLE, "ZYR-SMI-004", LOST, "SAMI", "END that cannot be read",
     "A SYNC with an END that is not all digits is found, but then refused: the text of the next good SYNC "
     "is shown "
     "in its place.",
     "movie.smi",
     "<SYNC Start=1000 End=2s><P>Hello\n<SYNC Start=3000><P>World\n<SYNC Start=4000><P>&nbsp;\n"},
    {E_RULE_SMI_NOT_SHOWN, "ZYR-SMI-005", LOST, "SAMI", "a paragraph that is not shown",
     "No caption of any class has this text. The text in front of a SYNC's first paragraph, and paragraphs "
     "of a "
     "class that was put into another by mistake, are such.",
     "movie.smi",
     "<SYNC Start=1000>Hello<SYNC Start=2000><P Class=ENCC>World<SYNC Start=3000><P Class=ENCC>&nbsp;"},
    {E_RULE_SMI_BEHIND_BODY, "ZYR-SMI-006", LOST, "SAMI", "captions behind the end of the body",
     "The box stops reading at the first </BODY> or </SAMI>.", "movie.smi",
     "<SYNC Start=1000><P>Hello\n<SYNC Start=2000><P>&nbsp;\n</BODY>\n<SYNC Start=3000><P>World\n"},
    {E_RULE_SMI_COMMENT, "ZYR-SMI-007", CHANGED, "SAMI", "a SYNC in a comment",
     "The box does not know comments when it looks for SYNC tags: what was taken out by <!-- and --> is "
     "shown.",
     "movie.smi",
     "<SYNC Start=1000><P>Hello\n<!-- <SYNC Start=1500><P>Secret -->\n<SYNC Start=2000><P>&nbsp;\n"},
    {E_RULE_SMI_CLASS_QUOTED, "ZYR-SMI-008", LOST, "SAMI", "a class name in quotation marks",
     "When the box looks for classes they belong to the name, and when it reads the paragraph they do not: "
     "the name "
     "is never found again, and the paragraph never shown. Write the name alone.",
     "movie.smi", "<SYNC Start=1000><P Class=\"ENCC\">Hello\n<SYNC Start=2000><P Class=\"ENCC\">&nbsp;\n"},
    {E_RULE_SMI_CLASS_NOT_FIRST, "ZYR-SMI-009", CHANGED, "SAMI",
     "CLASS is not the first attribute of its paragraph",
     "The class is not seen: the caption belongs to no language.", "movie.smi",
     "<SYNC Start=1000><P ID=Source Class=ENCC>Hello\n<SYNC Start=2000><P Class=ENCC>&nbsp;\n"},
    {E_RULE_SMI_CLASS_LONG, "ZYR-SMI-010", CHANGED, "SAMI", "a class name of more than 12 characters",
     "The name is cut to 12. Two classes that differ only behind that are one.", "movie.smi",
     "<SYNC Start=1000><P Class=ENGLISHCAPTIONS>Hello\n<SYNC Start=2000><P Class=ENGLISHCAPTIONS>&nbsp;\n"},
    {E_RULE_SMI_CLASS_FOLDED, "ZYR-SMI-011", CHANGED, "SAMI", "a class that is put into another",
     "A class of at most 29 captions beside one of more than 30 is taken for a slip of the writer: its "
     "captions "
     "appear in the other language. The captions without a class are put into the first Korean class, else "
     "the "
     "first class.",
     "movie.smi",
     "<SYNC Start=1000><P Class=ENCC>Hello\n<SYNC Start=2000><P>World\n<SYNC Start=3000><P "
     "Class=ENCC>&nbsp;\n"},
    {E_RULE_SMI_EIGHTH_CLASS, "ZYR-SMI-012", LOST, "SAMI", "a class beyond the seventh",
     "A file has seven classes at most. Captions of any further one are never shown.", "movie.smi",
     "<SYNC Start=1><P Class=A>a<P Class=B>b<P Class=C>c<P Class=D>d<P Class=E>e<P Class=F>f<P Class=G>g"
     "<P Class=H>h\n<SYNC Start=1000><P Class=A>&nbsp;\n"},
    {E_RULE_SMI_SIXTH_CLASS, "ZYR-SMI-013", DOUBTFUL, "SAMI", "a class beyond the fifth",
     "Five classes are read side by side. A further one is only shown where the player lets its viewer "
     "choose it.",
     "movie.smi",
     "<SYNC Start=1><P Class=A>a<P Class=B>b<P Class=C>c<P Class=D>d<P Class=E>e<P Class=F>f\n"
     "<SYNC Start=1000><P Class=A>&nbsp;\n"},

    {E_RULE_SUB_TIME_LINE, "ZYR-SUB-001", LOST, "SubViewer", "a time line that is not read",
     "A time has eight digits: hours, minutes, seconds and hundredths of two digits each, with : : and . "
     "between "
     "them or nothing, and one comma between the two times. A frame with any other time line is passed over "
     "whole.",
     "movie.sub", "[SUBTITLE]\n0:00:01.00,0:00:02.00\nHello\n\n00:00:03.00,00:00:04.00\nWorld\n\n"},
    {E_RULE_SUB_SWALLOWED, "ZYR-SUB-002", LOST, "SubViewer", "a frame inside another",
     "Only an empty line ends a frame. Without one this frame's times and text are shown as text of the "
     "frame before.",
     "movie.sub", "[SUBTITLE]\n00:00:01.00,00:00:02.00\nHello\n00:00:03.00,00:00:04.00\nWorld\n\n"},
    {E_RULE_SUB_BEHIND_EMPTY, "ZYR-SUB-003", LOST, "SubViewer", "text behind an empty line",
     "An empty line ends the frame, and what follows is taken for a time line that cannot be read.",
     "movie.sub", "[SUBTITLE]\n00:00:01.00,00:00:02.00\nHello\n\nWorld\n\n00:00:03.00,00:00:04.00\nBye\n\n"},
    {E_RULE_SUB_FIELD, "ZYR-SUB-004", DOUBTFUL, "SubViewer", "a field of the header that is not known",
     "Names are compared to the letter, in capitals. An unknown field is logged and passed over; a digit at "
     "the "
     "beginning of its value ends the header.",
     "movie.sub", "[SUBTITLE]\n[LANGUAGE]English\n00:00:01.00,00:00:02.00\nHello\n\n"},
    {E_RULE_SUB_VALUE, "ZYR-SUB-005", CHANGED, "SubViewer", "a value of the header that cannot be read",
     "DELAY and SIZE take digits alone, COLF takes &H and six hexadecimal digits. Anything else, a blank "
     "too, leaves "
     "the value as it was.",
     "movie.sub", "[SUBTITLE]\n[COLF]&HFFFF\n00:00:01.00,00:00:02.00\nHello\n\n"},
    {E_RULE_SUB_EMPTY_LINES, "ZYR-SUB-006", DOUBTFUL, "SubViewer", "more than one empty line between frames",
     "Every one too many is logged twice; nothing is lost.", "movie.sub",
     "[SUBTITLE]\n00:00:01.00,00:00:02.00\nHello\n\n\n00:00:03.00,00:00:04.00\nBye\n\n"},

    {E_RULE_SSA_START, "ZYR-SSA-001", LOST, "SSA", "a line whose start cannot be read",
     "A start is written H:MM:SS.CC and is not 0:00:00.00. Any other line is never shown; so is one from ten "
     "hours "
     "on.",
     "movie.ssa", "[Script Info]\n[Events]\nDialogue: Marked=0,0:00:00.00,0:00:02.00,,,0,0,0,,Hello\n"},
    {E_RULE_SSA_END, "ZYR-SSA-002", LOST, "SSA", "a line whose end cannot be read",
     "An end is written H:MM:SS.CC. With any other one the text of the line is not shown.", "movie.ssa",
     "[Script Info]\n[Events]\nDialogue: Marked=0,0:00:01.00,0:00:2,,,0,0,0,,Hello\n"},
    {E_RULE_SSA_SECTION, "ZYR-SSA-003", LOST, "SSA", "a Dialogue line outside the sections that are read",
     "Lines are read in the sections [Script Info], [v4 Styles] and [Events]; all others are passed over, "
     "and so is "
     "what stands before the first section.",
     "movie.ssa", "Dialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,Hello\n"},
    {E_RULE_SSA_STYLES_PLUS, "ZYR-SSA-004", CHANGED, "SSA", "styles of version 4+",
     "The section [V4+ Styles] is passed over: no style is known, and all captions have the box's own look. "
     "Write "
     "[v4 Styles] with the 18 fields of version 4.",
     "movie.ssa",
     "[Script Info]\nScriptType: v4.00+\n[V4+ Styles]\n"
     "Style: Default,Arial,20,&H00FFFFFF,&H0000FFFF,&H0,&H0,0,0,0,0,100,100,0,0,1,2,0,2,10,10,10,1\n"
     "[Events]\nDialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,Hello\n"},
    {E_RULE_SSA_STYLE_UNKNOWN, "ZYR-SSA-005", CHANGED, "SSA", "a style that is not found",
     "No Style line has a name that begins so. The caption keeps the size and the colours that the box was "
     "set to.",
     "movie.ssa",
     "[Script Info]\n[v4 Styles]\nStyle: Default,Arial,20,255,255,255,0,0,0,1,2,0,2,10,10,10,0,0\n"
     "[Events]\nDialogue: Marked=0,0:00:01.00,0:00:02.00,Song,,0,0,0,,Hello\n"},
    {E_RULE_SSA_STYLE_SHORT, "ZYR-SSA-006", CHANGED, "SSA", "a Style line without 18 fields",
     "A Style line of fewer fields is left out; of more, as in version 4+, the wrong ones are taken. A "
     "Format line "
     "changes nothing.",
     "movie.ssa",
     "[Script Info]\n[v4 Styles]\nStyle: Default,Arial,20\n[Events]\n"
     "Dialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,Hello\n"},
    {E_RULE_SSA_OVERRIDE, "ZYR-SSA-007", CHANGED, "SSA", "an override that the box does not know",
     "Known are \\b \\i \\fs \\c \\a \\k \\r, and without effect \\fn and \\fe. Any other, and text in "
     "braces, is logged "
     "and dropped.",
     "movie.ssa",
     "[Script Info]\n[Events]\nDialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,{\\pos(10,10)}Hello\n"},
    {E_RULE_SSA_OVERRIDES, "ZYR-SSA-008", CHANGED, "SSA", "several overrides in one brace",
     "Only the first one of a brace is seen. Give each a brace of its own.", "movie.ssa",
     "[Script Info]\n[Events]\nDialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,{\\i1\\b1}Hello\n"},
    {E_RULE_SSA_BEFORE_FIRST, "ZYR-SSA-009", LOST, "SSA", "a line earlier than the first of the file",
     "Lines are shown in the order of their times, but play begins with the first line of the file: what is "
     "earlier "
     "is passed over, until somebody seeks to the start. Sort the lines by time.",
     "movie.ssa",
     "[Script Info]\n[Events]\nDialogue: Marked=0,0:00:05.00,0:00:06.00,,,0,0,0,,World\n"
     "Dialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,Hello\n"},
    {E_RULE_SSA_FIELDS, "ZYR-SSA-010", LOST, "SSA", "a line with too few fields, or others",
     "Before the text stand nine fields: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect. "
     "A Format "
     "line changes nothing: with fewer fields, text is taken for them.",
     "movie.ssa", "[Script Info]\n[Events]\nDialogue: Marked=0,0:00:01.00,0:00:02.00,Default,,Hello\n"},

    {E_RULE_SSA_INDENTED, "ZYR-SSA-011", LOST, "SSA", "a line that begins with a blank",
     "The key must be the first thing of its line: a blank in front of Dialogue hides the line from the box.",
     "movie.ssa", "[Script Info]\n[Events]\n Dialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,Hello\n"},

    {E_RULE_OUT_GLYPH, "ZYR-OUT-001", CHANGED, "all", "a character that the font does not have",
     "A hollow shape is drawn in its place. Only looked for with an output.", "movie.srt",
     "\xEF\xBB\xBF"
     "1\n00:00:01,000 --> 00:00:02,000\nHello \xE1\x9A\xA0\n\n"},
    {E_RULE_OUT_WRAPPED, "ZYR-OUT-002", CHANGED, "all", "a line wider than the output",
     "It is broken into several lines on the display. Only looked for with an output.", "movie.srt",
     "1\n00:00:01,000 --> 00:00:05,000\nWWWWWWWWWWWWWWWWWWWW WWWWWWWWWWWWWWWWWWWW WWWWWWWWWWWWWWWWWWWW\n\n"},
    {E_RULE_OUT_TALL, "ZYR-OUT-003", LOST, "all", "a caption taller than the output",
     "Its rows do not all fit on the display. Six lines of 64 characters, wrapped to its width, do at an "
     "output's own font size, "
     "but not always at a larger one. Only looked for with an output.",
     "movie.srt",
     "1\n00:00:01,000 --> 00:00:09,000\n"
     "WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW\n"
     "WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW\n"
     "WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW\n"
     "WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW\n"
     "WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW\n"
     "WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW\n\n"},
};

consteval bool Check_Rules()
{
    for (uint32_t uiRule = 0; uiRule < E_RULE_NUMS; ++uiRule) {
        if (RULES[uiRule].eRule != uiRule) return false;
        for (uint32_t uiOther = 0; uiOther < uiRule; ++uiOther)
            if (std::string_view(RULES[uiRule].pszCode) == RULES[uiOther].pszCode) return false;
    }
    return true;
}
static_assert(std::size(RULES) == E_RULE_NUMS, "RULES: a rule is missing");
static_assert(Check_Rules(), "RULES: a row is not at its place, or a code occurs twice");

} // namespace

std::span<const RuleRow> Get_Rules()
{
    return RULES;
}
