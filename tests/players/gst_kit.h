// What the tests of the GStreamer elements share.
#ifndef ZYR_TESTS_GST_KIT_H
#define ZYR_TESTS_GST_KIT_H

#include <gst/check/gstharness.h>
#include <gst/gst.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "picture.h"

struct GstUnref {
    void operator()(void *pvObject) const { gst_object_unref(pvObject); }
};
using ElementPtr = std::unique_ptr<GstElement, GstUnref>;

// A pipeline as gst-launch writes it, gone to NULL when this goes.
class Pipeline
{
public:
    explicit Pipeline(const std::string &strLaunch);
    ~Pipeline();
    Pipeline(const Pipeline &) = delete;
    Pipeline &operator=(const Pipeline &) = delete;

    GstElement *Get() const { return m_pstPipeline; }
    ElementPtr Find(const char *pszName) const;
    // True once the state is reached; what went wrong is a failure of the test.
    bool Go_To(GstState eState) const;
    bool Seek(double dRate, int64_t llMs) const;
    // "" at the end of the film, else the error.
    std::string Wait_ForEnd() const;

private:
    GstElement *m_pstPipeline;
};

// The frame that an appsink shows in PAUSED, red, green, blue, alpha.
Picture Take_Preroll(GstElement *pstSink);

// Of the colours of two pictures of one size: how many bytes differ by more than a few steps.
size_t Count_Differences(const Picture &stOne, const Picture &stOther);

// What zyrsub render draws of a file at a time, over black.
Picture Render(const std::string &strSubtitle, int64_t llMs, const std::string &strOptions = "");

#endif
