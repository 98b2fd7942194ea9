#pragma once

#include "ossa_pch_model.h"

#include <QtTest>

#include <gtest/gtest.h>
