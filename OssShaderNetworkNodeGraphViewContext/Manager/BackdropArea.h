#pragma once

class OssNgBackdropNode;
class QRectF;

/// Puts a backdrop there (scene units), alone. Recorded, and joins the open macro; what is as it was leaves no
/// step.
void setBackdropArea(OssNgBackdropNode *backdrop, const QRectF &area);
