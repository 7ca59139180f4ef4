// What the overlay costs at 1920 x 1080 and 60 frames a second while a caption stands: the processor time of a
// pipeline with it and without it, turn by turn in one run.
#include <gst/gst.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

static constexpr int FRAMES = 600; // ten seconds of film
static constexpr int ROUNDS = 7;
static constexpr double MOST_PERCENT = 3; // of one core

static double Get_ProcessorSeconds()
{
    rusage stUsage;
    getrusage(RUSAGE_SELF, &stUsage);
    const auto pfSeconds = [](const timeval &stTime) {
        return static_cast<double>(stTime.tv_sec) + static_cast<double>(stTime.tv_usec) / 1e6;
    };
    return pfSeconds(stUsage.ru_utime) + pfSeconds(stUsage.ru_stime);
}

// Of a second of film, in processor seconds; below 0: it did not play.
static double Measure(const std::string &strFormat, const std::string &strOverlay)
{
    const std::string strLaunch = "videotestsrc pattern=black num-buffers=" + std::to_string(FRAMES) +
                                  " ! video/x-raw,width=1920,height=1080,framerate=60/1,format=" + strFormat +
                                  " ! " + strOverlay + " ! fakesink";
    GstElement *const pstPipeline = gst_parse_launch(strLaunch.c_str(), nullptr);
    const double dBefore = Get_ProcessorSeconds();
    gst_element_set_state(pstPipeline, GST_STATE_PLAYING);
    GstBus *const pstBus = gst_element_get_bus(pstPipeline);
    GstMessage *const pstMessage = gst_bus_timed_pop_filtered(
        pstBus, GST_CLOCK_TIME_NONE, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    const bool bGood = GST_MESSAGE_TYPE(pstMessage) == GST_MESSAGE_EOS;
    const double dSeconds = Get_ProcessorSeconds() - dBefore;
    gst_message_unref(pstMessage);
    gst_object_unref(pstBus);
    gst_element_set_state(pstPipeline, GST_STATE_NULL);
    gst_object_unref(pstPipeline);
    return bGood ? dSeconds * 60 / FRAMES : -1;
}

static double Get_Median(std::vector<double> adValues)
{
    std::sort(adValues.begin(), adValues.end());
    return adValues[adValues.size() / 2];
}

// The middle of the rounds' differences; false where it is too much.
static bool Report(const char *pszFormat, const std::string &strOverlay)
{
    std::vector<double> adCosts;
    std::vector<double> adPlain;
    for (int iRound = 0; iRound < ROUNDS; ++iRound) {
        const double dPlain = Measure(pszFormat, "identity");
        const double dOverlay = Measure(pszFormat, strOverlay);
        if (dPlain < 0 || dOverlay < 0) return false;
        adPlain.push_back(dPlain * 100);
        adCosts.push_back((dOverlay - dPlain) * 100);
    }
    const double dCost = Get_Median(adCosts);
    std::printf("%-5s without %6.2f %% of a core, with the overlay %+.2f %% (%+.2f to %+.2f in %d rounds)\n",
                pszFormat, Get_Median(adPlain), dCost, *std::min_element(adCosts.begin(), adCosts.end()),
                *std::max_element(adCosts.begin(), adCosts.end()), ROUNDS);
    return dCost <= MOST_PERCENT;
}

int main(int argc, char **argv)
{
    gst_init(&argc, &argv);
    if (argc != 3) {
        std::fputs("overlay_cost SUBTITLE OUTPUT: a subtitle whose caption stands for ten seconds\n", stderr);
        return 2;
    }
    const std::string strOverlay =
        std::string("zyrcaptionoverlay location=") + argv[1] + " output=" + argv[2];
    bool bGood = true;
    for (const char *const pszFormat : {"I420", "NV12", "BGRx"})
        bGood = Report(pszFormat, strOverlay) && bGood;
    return bGood ? 0 : 1;
}
