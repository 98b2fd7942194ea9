#pragma once

#include "ossa_pch.h"

// Before QtTest, which brings in more for what is included before it.
#include <QtWidgets>

#include <QtTest>

#include <gtest/gtest.h>
