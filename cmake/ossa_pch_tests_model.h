#pragma once

#include <QtTest>

#include <gtest/gtest.h>
