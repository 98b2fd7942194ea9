#pragma once

#include "ossa_pch.h"

// Before QtTest, which brings in more for what is included before it.
#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>
