#include "OssNodeGraph/Items/OssNgNodeMarks.h"

void OssNgNodeMarks::setMark(Mark mark, bool on)
{
    const quint32 marks = on ? m_marks | mark : m_marks & ~quint32(mark);
    if (marks == m_marks)
        return;
    m_marks = marks;
    marksChanged();
}
