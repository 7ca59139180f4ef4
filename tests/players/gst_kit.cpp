#include "gst_kit.h"

#include <gst/app/gstappsink.h>
#include <gst/video/video.h>
#include <gtest/gtest.h>

#include "caption_overlay.h"
#include "run_program.h"
#include "sub_parse.h"

static constexpr GstClockTime PATIENCE = 30 * GST_SECOND;
static constexpr int SMALL_DIFFERENCE = 24; // what an encoder and 16-bit colours make of a byte

int main(int argc, char **argv)
{
    gst_init(&argc, &argv);
    testing::InitGoogleTest(&argc, argv);
    GST_ELEMENT_REGISTER(zyrsubparse, nullptr);
    GST_ELEMENT_REGISTER(zyrcaptionoverlay, nullptr);
    const int iResult = RUN_ALL_TESTS();
    gst_deinit();
    return iResult;
}

Pipeline::Pipeline(const std::string &strLaunch)
{
    GError *pstError = nullptr;
    m_pstPipeline = gst_parse_launch(strLaunch.c_str(), &pstError);
    EXPECT_EQ(pstError, nullptr) << pstError->message;
    g_clear_error(&pstError);
}

Pipeline::~Pipeline()
{
    gst_element_set_state(m_pstPipeline, GST_STATE_NULL);
    gst_object_unref(m_pstPipeline);
}

ElementPtr Pipeline::Find(const char *pszName) const
{
    return ElementPtr(gst_bin_get_by_name(GST_BIN(m_pstPipeline), pszName));
}

bool Pipeline::Go_To(GstState eState) const
{
    gst_element_set_state(m_pstPipeline, eState);
    const bool bGood =
        gst_element_get_state(m_pstPipeline, nullptr, nullptr, PATIENCE) == GST_STATE_CHANGE_SUCCESS;
    EXPECT_TRUE(bGood) << Wait_ForEnd();
    return bGood;
}

bool Pipeline::Seek(double dRate, int64_t llMs) const
{
    const auto eFlags = static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE);
    const gint64 llAt = llMs * static_cast<gint64>(GST_MSECOND);
    const bool bForward = dRate > 0;
    if (!gst_element_seek(m_pstPipeline, dRate, GST_FORMAT_TIME, eFlags, GST_SEEK_TYPE_SET,
                          bForward ? llAt : 0, GST_SEEK_TYPE_SET, bForward ? -1 : llAt))
        return false;
    return gst_element_get_state(m_pstPipeline, nullptr, nullptr, PATIENCE) != GST_STATE_CHANGE_FAILURE;
}

std::string Pipeline::Wait_ForEnd() const
{
    GstBus *const pstBus = gst_element_get_bus(m_pstPipeline);
    GstMessage *const pstMessage = gst_bus_timed_pop_filtered(
        pstBus, PATIENCE, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    gst_object_unref(pstBus);
    std::string strText = pstMessage == nullptr ? "nothing happens" : "";
    if (pstMessage != nullptr && GST_MESSAGE_TYPE(pstMessage) == GST_MESSAGE_ERROR) {
        GError *pstError = nullptr;
        gst_message_parse_error(pstMessage, &pstError, nullptr);
        strText = pstError->message;
        g_error_free(pstError);
    }
    if (pstMessage != nullptr) gst_message_unref(pstMessage);
    return strText;
}

Picture Take_Preroll(GstElement *pstSink)
{
    Picture stPicture;
    GstSample *const pstSample = gst_app_sink_try_pull_preroll(GST_APP_SINK(pstSink), PATIENCE);
    if (pstSample == nullptr) return stPicture;
    GstVideoInfo stInfo;
    GstVideoFrame stFrame;
    gst_video_info_from_caps(&stInfo, gst_sample_get_caps(pstSample));
    EXPECT_EQ(GST_VIDEO_INFO_FORMAT(&stInfo), GST_VIDEO_FORMAT_RGBA);
    gst_video_frame_map(&stFrame, &stInfo, gst_sample_get_buffer(pstSample), GST_MAP_READ);
    stPicture.uiWidth = static_cast<uint32_t>(stInfo.width);
    stPicture.uiHeight = static_cast<uint32_t>(stInfo.height);
    const auto *const pucRows = static_cast<const uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&stFrame, 0));
    stPicture.aucRgba.assign(pucRows, pucRows + size_t{stPicture.uiWidth} * stPicture.uiHeight * 4);
    gst_video_frame_unmap(&stFrame);
    gst_sample_unref(pstSample);
    return stPicture;
}

size_t Count_Differences(const Picture &stOne, const Picture &stOther)
{
    EXPECT_EQ(stOne.aucRgba.size(), stOther.aucRgba.size());
    if (stOne.aucRgba.size() != stOther.aucRgba.size()) return SIZE_MAX;
    size_t uiDifferent = 0;
    for (size_t ui = 0; ui < stOne.aucRgba.size(); ++ui)
        if (ui % 4 != 3)
            uiDifferent += std::abs(stOne.aucRgba[ui] - stOther.aucRgba[ui]) > SMALL_DIFFERENCE ? 1 : 0;
    return uiDifferent;
}

Picture Render(const std::string &strSubtitle, int64_t llMs, const std::string &strOptions)
{
    const TestFolder stFolder;
    Picture stPicture;
    const RunResult stRun = Run_Zyrsub("render '" + strSubtitle + "' --at " + std::to_string(llMs) + "ms " +
                                       strOptions + " -o " + stFolder.Path("x.png"));
    EXPECT_EQ(stRun.iCode, 0) << stRun.strErr;
    EXPECT_TRUE(Read_Png(stFolder.Path("x.png"), stPicture).IsGood());
    return stPicture;
}
