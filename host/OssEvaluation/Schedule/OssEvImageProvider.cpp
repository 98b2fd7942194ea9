#include "OssEvaluation/Schedule/OssEvImageProvider.h"

OssEvImageProvider::~OssEvImageProvider() = default;
