#include "DailyWork.h"

#ifdef OSSA_WITH_OPENCV

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

using namespace DailyWork;

Figures DailyWork::ofOpenCv()
{
    cv::setNumThreads(1);
    cv::Mat picture(Edge, Edge, CV_32FC4);
    cv::Mat across(Edge, Edge, CV_32FC1);
    cv::Mat down(Edge, Edge, CV_32FC1);
    for (int y = 0; y < Edge; ++y) {
        for (int x = 0; x < Edge; ++x) {
            auto &texel = picture.at<cv::Vec4f>(y, x);
            for (int k = 0; k < 4; ++k)
                texel[k] = WavePicture::valueAt(x, y, k);
            across.at<float>(y, x) = float(x + Edge * WarpAmount * (texel[0] - 0.5));
            down.at<float>(y, x) = float(y + Edge * WarpAmount * (texel[1] - 0.5));
        }
    }
    cv::Mat to(Edge, Edge, CV_32FC4);
    cv::Mat soft(Edge, Edge, CV_32FC4);
    const cv::Mat turned = cv::getRotationMatrix2D({Edge / 2.0F, Edge / 2.0F}, Degrees, 1.0);
    constexpr int Wide = 2 * GrowRadius + 1;
    const cv::Mat disc = cv::getStructuringElement(cv::MORPH_ELLIPSE, {Wide, Wide});
    return {{"blur", best([&] { cv::GaussianBlur(picture, to, {}, BlurDeviation); })},
            {"levels", best([&] {
                 picture.convertTo(to, -1, 1.25, -0.125);
                 cv::max(to, 0.0, to);
                 cv::min(to, 1.0, to);
             })},
            {"transform",
             best([&] { cv::warpAffine(picture, to, turned, picture.size(), cv::INTER_LINEAR); })},
            {"warp", best([&] {
                 cv::remap(picture, to, across, down, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
             })},
            {"sharpen", best([&] {
                 cv::GaussianBlur(picture, soft, {}, SharpenDeviation);
                 cv::addWeighted(picture, 1.5, soft, -0.5, 0.0, to);
             })},
            {"growBright", best([&] { cv::dilate(picture, to, disc); })}};
}

#else

DailyWork::Figures DailyWork::ofOpenCv()
{
    return {};
}

#endif
