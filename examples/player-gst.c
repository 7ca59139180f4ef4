/*
 * A player as an appliance has it: a film with its captions as the box shows them, and keys from standard input.
 *
 *     player-gst MOVIE [OUTPUT [VIDEO-SINK [AUDIO-SINK]]]
 *
 * l next language   o next output   s captions off and on   space pause   < > 10 seconds back, on   q quit
 *
 * GStreamer has to find the plugin: it is installed, or GST_PLUGIN_PATH names its folder.
 */
#include <gst/gst.h>
#include <stdio.h>
#include <termios.h>
#include <unistd.h>

typedef struct Player {
    GstElement *pstPlaybin;
    GstElement *pstOverlay;
    GMainLoop *pstLoop;
    guint uiLanguage; /* 0: all of them, else the one before in the list */
    gint iResult;
} Player;

/* The file's languages are known once its first frame has come. */
static void Choose_NextLanguage(Player *pstPlayer)
{
    gchar **ppszClasses = NULL;
    g_object_get(pstPlayer->pstOverlay, "classes", &ppszClasses, NULL);
    const guint uiClasses = ppszClasses == NULL ? 0 : g_strv_length(ppszClasses);
    pstPlayer->uiLanguage = (pstPlayer->uiLanguage + 1) % (uiClasses + 1);
    const gchar *pszClass = pstPlayer->uiLanguage == 0 ? NULL : ppszClasses[pstPlayer->uiLanguage - 1];
    g_object_set(pstPlayer->pstOverlay, "class", pszClass, NULL);
    printf("language: %s\n", pszClass == NULL ? "all" : pszClass);
    g_strfreev(ppszClasses);
}

static void Choose_NextOutput(Player *pstPlayer)
{
    gint iOutput = 0;
    g_object_get(pstPlayer->pstOverlay, "output", &iOutput, NULL);
    GParamSpec *pstSpec = g_object_class_find_property(G_OBJECT_GET_CLASS(pstPlayer->pstOverlay), "output");
    GEnumClass *pstOutputs = G_PARAM_SPEC_ENUM(pstSpec)->enum_class;
    iOutput = (iOutput + 1) % (gint)pstOutputs->n_values;
    g_object_set(pstPlayer->pstOverlay, "output", iOutput, NULL);
    printf("output: %s\n", g_enum_get_value(pstOutputs, iOutput)->value_nick);
}

static void Turn_Captions(Player *pstPlayer)
{
    gboolean bSilent = FALSE;
    g_object_get(pstPlayer->pstOverlay, "silent", &bSilent, NULL);
    g_object_set(pstPlayer->pstOverlay, "silent", !bSilent, NULL);
    printf("captions: %s\n", bSilent ? "on" : "off");
}

static void Pause_OrGoOn(Player *pstPlayer)
{
    const gboolean bPlays = GST_STATE_TARGET(pstPlayer->pstPlaybin) == GST_STATE_PLAYING;
    gst_element_set_state(pstPlayer->pstPlaybin, bPlays ? GST_STATE_PAUSED : GST_STATE_PLAYING);
    printf("%s\n", bPlays ? "paused" : "playing");
}

static void Seek_By(Player *pstPlayer, gint64 llSeconds)
{
    gint64 llTime = 0; /* ns */
    if (!gst_element_query_position(pstPlayer->pstPlaybin, GST_FORMAT_TIME, &llTime)) return;
    llTime = MAX(llTime + llSeconds * (gint64)GST_SECOND, 0);
    gst_element_seek_simple(pstPlayer->pstPlaybin, GST_FORMAT_TIME,
                            GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE, llTime);
    printf("at %.1f s\n", (double)llTime / (double)GST_SECOND);
}

static gboolean Handle_Key(GIOChannel *pstInput, GIOCondition eCondition, gpointer pvPlayer)
{
    Player *pstPlayer = pvPlayer;
    gchar cKey = '\0';
    (void)eCondition;
    if (read(g_io_channel_unix_get_fd(pstInput), &cKey, 1) != 1) return G_SOURCE_REMOVE; /* no more keys */
    switch (cKey) {
    case 'l': Choose_NextLanguage(pstPlayer); break;
    case 'o': Choose_NextOutput(pstPlayer); break;
    case 's': Turn_Captions(pstPlayer); break;
    case ' ': Pause_OrGoOn(pstPlayer); break;
    case '<': Seek_By(pstPlayer, -10); break;
    case '>': Seek_By(pstPlayer, 10); break;
    case 'q': g_main_loop_quit(pstPlayer->pstLoop); break;
    default: break;
    }
    fflush(stdout);
    return G_SOURCE_CONTINUE;
}

static void Report_Problem(GstMessage *pstMessage, gboolean bError)
{
    GError *pstProblem = NULL;
    if (bError)
        gst_message_parse_error(pstMessage, &pstProblem, NULL);
    else
        gst_message_parse_warning(pstMessage, &pstProblem, NULL);
    fprintf(stderr, "player-gst: %s\n", pstProblem->message);
    g_error_free(pstProblem);
}

static gboolean Handle_Message(GstBus *pstBus, GstMessage *pstMessage, gpointer pvPlayer)
{
    Player *pstPlayer = pvPlayer;
    const GstMessageType eType = GST_MESSAGE_TYPE(pstMessage);
    (void)pstBus;
    if (eType == GST_MESSAGE_WARNING) Report_Problem(pstMessage, FALSE);
    if (eType == GST_MESSAGE_ERROR) {
        Report_Problem(pstMessage, TRUE);
        pstPlayer->iResult = 1;
    }
    if (eType == GST_MESSAGE_ERROR || eType == GST_MESSAGE_EOS) g_main_loop_quit(pstPlayer->pstLoop);
    return G_SOURCE_CONTINUE;
}

static GstElement *Make_Sink(const char *pszName)
{
    GstElement *pstSink = gst_element_factory_make(pszName, NULL);
    if (pstSink == NULL) {
        fprintf(stderr, "player-gst: there is no %s\n", pszName);
        return NULL;
    }
    if (g_object_class_find_property(G_OBJECT_GET_CLASS(pstSink), "sync") != NULL)
        g_object_set(pstSink, "sync", TRUE, NULL); /* fakesink does not wait for the clock by itself */
    return pstSink;
}

static gboolean Set_Up(Player *pstPlayer, int argc, char **argv)
{
    pstPlayer->pstPlaybin = gst_element_factory_make("playbin", NULL);
    pstPlayer->pstOverlay = gst_element_factory_make("zyrcaptionoverlay", NULL);
    if (pstPlayer->pstPlaybin == NULL || pstPlayer->pstOverlay == NULL) {
        fprintf(stderr, "player-gst: playbin and zyrcaptionoverlay are needed; see gst-inspect-1.0\n");
        return FALSE;
    }
    gchar *pszUri = gst_filename_to_uri(argv[1], NULL);
    g_object_set(pstPlayer->pstPlaybin, "uri", pszUri, "video-filter", pstPlayer->pstOverlay, NULL);
    g_free(pszUri);
    if (argc > 2) gst_util_set_object_arg(G_OBJECT(pstPlayer->pstOverlay), "output", argv[2]);
    if (argc > 3) g_object_set(pstPlayer->pstPlaybin, "video-sink", Make_Sink(argv[3]), NULL);
    if (argc > 4) g_object_set(pstPlayer->pstPlaybin, "audio-sink", Make_Sink(argv[4]), NULL);
    return TRUE;
}

static void Run(Player *pstPlayer)
{
    pstPlayer->pstLoop = g_main_loop_new(NULL, FALSE);
    GstBus *pstBus = gst_element_get_bus(pstPlayer->pstPlaybin);
    gst_bus_add_watch(pstBus, Handle_Message, pstPlayer);
    GIOChannel *pstInput = g_io_channel_unix_new(STDIN_FILENO);
    /* Keys count once the film is there. */
    gst_element_set_state(pstPlayer->pstPlaybin, GST_STATE_PLAYING);
    gst_element_get_state(pstPlayer->pstPlaybin, NULL, NULL, 10 * GST_SECOND);
    g_io_add_watch(pstInput, G_IO_IN | G_IO_HUP, Handle_Key, pstPlayer);
    g_main_loop_run(pstPlayer->pstLoop);
    gst_element_set_state(pstPlayer->pstPlaybin, GST_STATE_NULL);
    g_io_channel_unref(pstInput);
    gst_bus_remove_watch(pstBus);
    gst_object_unref(pstBus);
    g_main_loop_unref(pstPlayer->pstLoop);
}

int main(int argc, char **argv)
{
    Player stPlayer = {NULL, NULL, NULL, 0, 0};
    struct termios stBefore;
    gst_init(&argc, &argv);
    if (argc < 2 || argc > 5) {
        fprintf(stderr, "player-gst MOVIE [OUTPUT [VIDEO-SINK [AUDIO-SINK]]]\n");
        return 2;
    }
    if (!Set_Up(&stPlayer, argc, argv)) return 1;
    const gboolean bTerminal = tcgetattr(STDIN_FILENO, &stBefore) == 0;
    if (bTerminal) { /* each key by itself, and not shown */
        struct termios stRaw = stBefore;
        stRaw.c_lflag &= ~(tcflag_t)(ICANON | ECHO);
        tcsetattr(STDIN_FILENO, TCSANOW, &stRaw);
    }
    Run(&stPlayer);
    if (bTerminal) tcsetattr(STDIN_FILENO, TCSANOW, &stBefore);
    gst_object_unref(stPlayer.pstPlaybin);
    return stPlayer.iResult;
}
