/* Memory and files of the engine: QUIBCAPTCB_* and TRACK_* are declared in zyr/quib_caption.h. */
#pragma once

/** Close the file that the open path opened, if any, and forget it. */
void Close_SubtitleFile();
