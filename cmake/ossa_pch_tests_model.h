#pragma once

#include "ossa_pch_model.h"

#include <gtest/gtest.h>

#include <QtTest>
