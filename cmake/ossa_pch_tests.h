#pragma once

#include "ossa_pch.h"

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>
