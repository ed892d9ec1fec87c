#pragma once
// Draws a scene at a tick from a view point, with a current OpenGL context
// (2.1 and up): meshes shaded, helpers as wires or solid as their flags say,
// cameras as the frusta of their lenses, a ground grid; hidden nodes not at
// all. Meshes go to the graphics card once and again only when they change,
// so that a frame allocates nothing.

#include <QOpenGLBuffer>
#include <QOpenGLFunctions>
#include <QOpenGLShaderProgram>
#include <QVector3D>
#include <string>
#include <unordered_map>

#include "adaptor/standalone/scene.h"
#include "gui/viewport/meshbuffers.h"
#include "gui/viewport/viewpoint.h"

namespace vuk::gui::viewport {

using rgw::adaptor::standalone::Scene;

class SceneRenderer : protected QOpenGLFunctions {
 public:
  // With the context current; false with the reason.
  bool Initialize(std::string& error);
  // Drops the meshes it holds, for another scene; with the context current.
  void Forget() { meshes_.clear(); }
  // A null scene draws the grid alone.
  void Draw(Scene* scene, Tick tick, const ViewPoint& viewPoint, int width, int height);

 private:
  void DrawBelow(const SceneNode& parent);
  void DrawNode(const SceneNode& node);
  void DrawMesh(const SceneNode& node, const QMatrix4x4& model, bool solid, const QVector3D& colour);
  void DrawCamera(const SceneNode& node, const QMatrix4x4& model);
  void DrawGrid();
  // Sets the program's uniforms for one model.
  void Use(const QMatrix4x4& model, const QVector3D& colour, bool shaded);

  QOpenGLShaderProgram program_;
  Attributes attributes_;
  int modelViewProjection_ = -1;
  int normalToWorld_ = -1;
  int colour_ = -1;
  int shading_ = -1;
  QOpenGLBuffer grid_{QOpenGLBuffer::VertexBuffer};
  int gridVertices_ = 0;
  int gridAxisVertices_ = 0;
  QOpenGLBuffer frustum_{QOpenGLBuffer::VertexBuffer};
  int frustumVertices_ = 0;
  std::unordered_map<SceneNode::Handle, MeshBuffers> meshes_;

  // The frame being drawn.
  Tick tick_ = 0;
  QMatrix4x4 viewProjection_;
  const SceneNode* lookingThrough_ = nullptr;
};

}  // namespace vuk::gui::viewport
