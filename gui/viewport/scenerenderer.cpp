#include "gui/viewport/scenerenderer.h"

#include <vector>

namespace vuk::gui::viewport {

namespace {

using rgw::adaptor::standalone::ObjectKind;

const char* const kVertexShader = R"(#version 120
attribute vec3 position;
attribute vec3 normal;
uniform mat4 modelViewProjection;
uniform mat3 normalToWorld;
varying vec3 worldNormal;
void main() {
  worldNormal = normalToWorld * normal;
  gl_Position = modelViewProjection * vec4(position, 1.0);
}
)";

// One light from above and aside; faces lit from either side, since meshes
// of files don't all wind their triangles one way.
const char* const kFragmentShader = R"(#version 120
uniform vec3 colour;
uniform float shading;
varying vec3 worldNormal;
const vec3 toLight = vec3(0.3578, 0.8944, 0.2683);
void main() {
  float facing = abs(dot(normalize(worldNormal), toLight));
  gl_FragColor = vec4(colour * mix(1.0, 0.35 + 0.65 * facing, shading), 1.0);
}
)";

const QVector3D kBackground(0.24f, 0.26f, 0.29f);
const QVector3D kLetterbox(0.08f, 0.08f, 0.09f);
const QVector3D kGridColour(0.33f, 0.35f, 0.38f);
const QVector3D kGridAxisColour(0.45f, 0.47f, 0.52f);
const QVector3D kMeshColour(0.74f, 0.73f, 0.70f);
const QVector3D kHelperColour(0.96f, 0.62f, 0.20f);
const QVector3D kCameraColour(0.40f, 0.72f, 1.00f);
const QVector3D kSelectedColour(1.00f, 1.00f, 0.65f);

// Lines every kGridStep metres out to kGridReach either way; the two through
// the origin come last, to be drawn in their own colour.
constexpr int kGridReach = 100;
constexpr int kGridStep = 5;

std::vector<float> GridLines() {
  std::vector<float> lines;
  const auto line = [&lines](float x0, float z0, float x1, float z1) { lines.insert(lines.end(), {x0, 0, z0, x1, 0, z1}); };
  constexpr float reach = kGridReach;
  for (int at = -kGridReach; at <= kGridReach; at += kGridStep) {
    if (at == 0) continue;
    line(static_cast<float>(at), -reach, static_cast<float>(at), reach);
    line(-reach, static_cast<float>(at), reach, static_cast<float>(at));
  }
  line(0, -reach, 0, reach);
  line(-reach, 0, reach, 0);
  return lines;
}

// A frustum of depth 1 whose far rectangle spans -1 to 1 across and up,
// with a triangle over its top edge that tells up from down.
std::vector<float> FrustumLines() {
  const float corners[4][3] = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}};
  std::vector<float> lines;
  for (int i = 0; i < 4; ++i) {
    const float* corner = corners[i];
    const float* next = corners[(i + 1) % 4];
    lines.insert(lines.end(), {0, 0, 0, corner[0], corner[1], corner[2]});
    lines.insert(lines.end(), {corner[0], corner[1], corner[2], next[0], next[1], next[2]});
  }
  lines.insert(lines.end(), {-0.5f, 1.1f, -1, 0, 1.6f, -1, 0, 1.6f, -1, 0.5f, 1.1f, -1});
  return lines;
}

void FillStatic(QOpenGLBuffer& buffer, const std::vector<float>& data) {
  buffer.create();
  buffer.bind();
  buffer.allocate(data.data(), static_cast<int>(data.size() * sizeof(float)));
  buffer.release();
}

void Clear(QOpenGLFunctions& gl, const QVector3D& colour) {
  gl.glClearColor(colour.x(), colour.y(), colour.z(), 1);
  gl.glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

}  // namespace

bool SceneRenderer::Initialize(std::string& error) {
  initializeOpenGLFunctions();
  if (!program_.addShaderFromSourceCode(QOpenGLShader::Vertex, kVertexShader) ||
      !program_.addShaderFromSourceCode(QOpenGLShader::Fragment, kFragmentShader)) {
    error = "the viewport's shaders don't compile: " + program_.log().toStdString();
    return false;
  }
  // Position at 0: some drivers draw nothing without an array there.
  program_.bindAttributeLocation("position", 0);
  program_.bindAttributeLocation("normal", 1);
  if (!program_.link()) {
    error = "the viewport's shaders don't link: " + program_.log().toStdString();
    return false;
  }
  attributes_ = {program_.attributeLocation("position"), program_.attributeLocation("normal")};
  modelViewProjection_ = program_.uniformLocation("modelViewProjection");
  normalToWorld_ = program_.uniformLocation("normalToWorld");
  colour_ = program_.uniformLocation("colour");
  shading_ = program_.uniformLocation("shading");
  const std::vector<float> grid = GridLines();
  FillStatic(grid_, grid);
  gridVertices_ = static_cast<int>(grid.size() / 3);
  gridAxisVertices_ = 4;
  const std::vector<float> frustum = FrustumLines();
  FillStatic(frustum_, frustum);
  frustumVertices_ = static_cast<int>(frustum.size() / 3);
  return true;
}

void SceneRenderer::Draw(Scene* scene, Tick tick, const ViewPoint& viewPoint, int width, int height) {
  const Frame frame = viewPoint.FrameAt(tick, width, height);
  tick_ = tick;
  viewProjection_ = frame.projection * frame.view;
  lookingThrough_ = viewPoint.Camera();

  glDisable(GL_SCISSOR_TEST);
  glViewport(0, 0, width, height);
  Clear(*this, kLetterbox);
  glEnable(GL_SCISSOR_TEST);
  glScissor(frame.area.x(), frame.area.y(), frame.area.width(), frame.area.height());
  glViewport(frame.area.x(), frame.area.y(), frame.area.width(), frame.area.height());
  Clear(*this, kBackground);
  glDisable(GL_SCISSOR_TEST);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LEQUAL);
  // Faces a little behind their own wires, so that wires over them show.
  glPolygonOffset(1, 1);
  glEnable(GL_POLYGON_OFFSET_FILL);
  program_.bind();
  DrawGrid();
  if (scene) DrawBelow(scene->Root());
  program_.release();
  glDisable(GL_POLYGON_OFFSET_FILL);
  glDisable(GL_DEPTH_TEST);
}

void SceneRenderer::DrawBelow(const SceneNode& parent) {
  for (const SceneNode* child : parent.children) {
    if (child->visible) DrawNode(*child);
    DrawBelow(*child);
  }
}

void SceneRenderer::DrawNode(const SceneNode& node) {
  const bool drawn = node.kind == ObjectKind::kMesh || node.kind == ObjectKind::kHelper || node.kind == ObjectKind::kCamera;
  if (!drawn || &node == lookingThrough_) return;
  const QMatrix4x4 model = ToQt(node.World(tick_));
  if (node.kind == ObjectKind::kCamera) return DrawCamera(node, model);
  if (node.mesh.faces.empty()) return;
  const bool helper = node.kind == ObjectKind::kHelper;
  const QVector3D colour = node.selected ? kSelectedColour : helper ? kHelperColour : kMeshColour;
  DrawMesh(node, model, !helper || !node.wireframe, colour);
}

void SceneRenderer::DrawMesh(const SceneNode& node, const QMatrix4x4& model, bool solid, const QVector3D& colour) {
  MeshBuffers& buffers = meshes_[node.handle];
  if (!buffers.Holds(node.meshRevision, !solid)) buffers.Upload(node.mesh, node.meshRevision, !solid);
  Use(model, colour, solid);
  if (!solid) return buffers.DrawEdges(*this, attributes_);
  if (node.backfaceCull) glEnable(GL_CULL_FACE);
  buffers.DrawFaces(*this, attributes_);
  glDisable(GL_CULL_FACE);
}

void SceneRenderer::DrawCamera(const SceneNode& node, const QMatrix4x4& model) {
  const float depth = static_cast<float>(node.camera.targetDistance.At(tick_).value);
  const QVector2D spread = LensSpread(node, tick_) * depth;
  QMatrix4x4 scaled = model;
  scaled.scale(spread.x(), spread.y(), depth);
  Use(scaled, node.selected ? kSelectedColour : kCameraColour, false);
  frustum_.bind();
  DrawBound(*this, attributes_, GL_LINES, frustumVertices_, false);
  frustum_.release();
}

void SceneRenderer::DrawGrid() {
  // A backdrop: whatever the scene draws covers it, a terrain that dips below
  // the ground plane too.
  glDepthMask(GL_FALSE);
  grid_.bind();
  Use(QMatrix4x4(), kGridColour, false);
  DrawBound(*this, attributes_, GL_LINES, gridVertices_ - gridAxisVertices_, false);
  program_.setUniformValue(colour_, kGridAxisColour);
  glDrawArrays(GL_LINES, gridVertices_ - gridAxisVertices_, gridAxisVertices_);
  grid_.release();
  glDepthMask(GL_TRUE);
}

void SceneRenderer::Use(const QMatrix4x4& model, const QVector3D& colour, bool shaded) {
  program_.setUniformValue(modelViewProjection_, viewProjection_ * model);
  program_.setUniformValue(normalToWorld_, model.normalMatrix());
  program_.setUniformValue(colour_, colour);
  program_.setUniformValue(shading_, shaded ? 1.0f : 0.0f);
}

}  // namespace vuk::gui::viewport
