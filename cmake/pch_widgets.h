// Precompiled for every widget layer target and every test.
#pragma once
#include <QtCore/QtCore>
#include <QtGui/QtGui>
#include <QtWidgets/QtWidgets>
#include <algorithm>
#include <functional>
#include <memory>
#include <vector>
