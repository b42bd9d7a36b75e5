// Runs in a browser: draws test points with three.js, each in a window of its own cut out of the picture, and measures
// where they are in a screenshot.

import * as THREE from "three";
import { GLTFLoader } from "three/addons/loaders/GLTFLoader.js";

const WINDOW_px = 24;
const SIGMA_px = 1.5;

let renderer;
let scale;
const markers = new THREE.Scene();

// A Gaussian blob around the place where the camera's matrices put the origin of the marker. It covers its window, so that
// no rounding of corners to the screen's grid moves it.
const blob = new THREE.ShaderMaterial({
  uniforms: { view: { value: new THREE.Vector4() }, sigma: { value: 0 } },
  vertexShader: `
    uniform highp vec4 view;
    varying highp vec3 centre;
    void main() {
      vec4 clip = projectionMatrix * modelViewMatrix * vec4(0.0, 0.0, 0.0, 1.0);
      centre = vec3(view.xy + (clip.xy / clip.w * 0.5 + 0.5) * view.zw, clip.w > 0.0 ? 1.0 : 0.0);
      gl_Position = vec4(position.xy, 0.0, 1.0);
    }`,
  fragmentShader: `
    uniform highp float sigma;
    varying highp vec3 centre;
    void main() {
      highp vec2 away = (gl_FragCoord.xy - centre.xy) / sigma;
      gl_FragColor = vec4(vec3(centre.z * exp(-0.5 * dot(away, away))), 1.0);
    }`,
  depthTest: false,
});
const marker = new THREE.Mesh(new THREE.PlaneGeometry(2, 2), blob);
marker.frustumCulled = false;
markers.add(marker);

/** @param size_px width and height of the canvas, in CSS pixels */
window.start = (size_px) => {
  scale = window.devicePixelRatio;
  renderer = new THREE.WebGLRenderer({ antialias: false, preserveDrawingBuffer: true });
  renderer.outputColorSpace = THREE.LinearSRGBColorSpace;
  renderer.setPixelRatio(scale);
  renderer.setSize(...size_px);
  renderer.autoClear = false;
  renderer.setScissorTest(true);
  document.body.style.margin = "0";
  renderer.domElement.style.display = "block";
  document.body.append(renderer.domElement);
};

// What three.js leaves out: it ignores KHR_animation_pointer, so the angle of view is taken from the file here.
function anglesByHand(parser, index, arrays) {
  const pointer = `/cameras/${parser.json.nodes[index].camera}/perspective/yfov`;
  for (const animation of parser.json.animations ?? []) {
    for (const { sampler, target } of animation.channels) {
      if (target.extensions?.KHR_animation_pointer?.pointer === pointer) {
        const { input, output } = animation.samplers[sampler];
        return { times: arrays[input], values: arrays[output] };
      }
    }
  }
  return null;
}

function angleAt({ times, values }, seconds) {
  const next = times.findIndex((time) => time > seconds);
  if (next === 0) return values[0];
  if (next < 0) return values[values.length - 1];
  const part = (seconds - times[next - 1]) / (times[next] - times[next - 1]);
  return values[next - 1] + part * (values[next] - values[next - 1]);
}

/** A .glb file in base64. `at(camera, seconds)` is the camera as three.js has it then; the cameras are in the file's order. */
async function loadGltf(base64) {
  const bytes = Uint8Array.from(atob(base64), (one) => one.charCodeAt(0));
  const gltf = await new GLTFLoader().parseAsync(bytes.buffer, "");
  const { parser } = gltf;
  const arrays = {};
  for (const index of (parser.json.accessors ?? []).keys()) {
    arrays[index] = (await parser.getDependency("accessor", index)).array;
  }
  const cameras = [];
  for (const [index, node] of (parser.json.nodes ?? []).entries()) {
    if (node.camera === undefined) continue;
    let object = await parser.getDependency("node", index);
    if (!object.isCamera) object = object.children.find((child) => child.isCamera);
    cameras.push({ object, angles: anglesByHand(parser, index, arrays) });
  }
  const mixer = new THREE.AnimationMixer(gltf.scene);
  const actions = gltf.animations.map((clip) => mixer.clipAction(clip).setLoop(THREE.LoopOnce));
  actions.forEach((action) => (action.clampWhenFinished = true));
  return {
    scale: parser.json.asset.extras.scale,
    byHand: cameras.map((camera) => camera.angles !== null),
    at(camera, seconds) {
      // The format's times are floats.
      const time = Math.fround(seconds);
      actions.forEach((action) => action.reset().play());
      mixer.setTime(time);
      const { object, angles } = cameras[camera];
      if (angles) object.fov = (angleAt(angles, time) * 180) / Math.PI;
      object.updateProjectionMatrix();
      gltf.scene.updateMatrixWorld(true);
      return object;
    },
  };
}

/** A camera straight from numbers of the scene: three.js looks along -z, and its z comes towards the viewer. */
function cameraOf({ axes, place, angle, width, height, aspect }) {
  const upwards = ((height / (width * aspect)) * Math.tan((angle * Math.PI) / 360));
  const camera = new THREE.PerspectiveCamera((360 / Math.PI) * Math.atan(upwards), (width * aspect) / height);
  const { right, up, view } = axes;
  camera.matrix.set(
    right[0], up[0], -view[0], place[0],
    right[1], up[1], -view[1], place[1],
    -right[2], -up[2], view[2], -place[2],
    0, 0, 0, 1);
  camera.matrixAutoUpdate = false;
  camera.updateMatrixWorld(true);
  return camera;
}

/**
 * Draws a page of windows from the top left, row by row. Each shot has a camera (of the file with `gltf`, `camera` and
 * `seconds`, or of the scene with `pose`) and windows: a point in the scene's axes, and the top left pixel of the window in
 * the picture. Returns, for each shot, whether its angle of view is the file's or read by hand.
 */
window.draw = async (files, shots) => {
  const loaded = [];
  for (const file of files) loaded.push(await loadGltf(file));
  const [width, height] = renderer.getSize(new THREE.Vector2()).toArray();
  renderer.setScissor(0, 0, width, height);
  renderer.setViewport(0, 0, width, height);
  renderer.clear();
  blob.uniforms.sigma.value = SIGMA_px * scale;
  let count = 0;
  const byHand = [];
  for (const shot of shots) {
    const file = shot.gltf === undefined ? null : loaded[shot.gltf];
    const camera = file ? file.at(shot.camera, shot.seconds) : cameraOf(shot.pose);
    byHand.push(file ? file.byHand[shot.camera] : false);
    const unit = file ? file.scale : 1;
    // three.js gives a camera with an offset the aspect of the whole picture, which is to be its own.
    const stretch = (camera.aspect * shot.height) / shot.width;
    for (const { point, corner } of shot.windows) {
      const across = Math.floor(width / WINDOW_px);
      const x = (count % across) * WINDOW_px;
      const y = height - WINDOW_px * (Math.floor(count / across) + 1);
      camera.setViewOffset(stretch * shot.width, shot.height, stretch * corner[0], corner[1], stretch * WINDOW_px, WINDOW_px);
      marker.position.set(unit * point[0], unit * point[1], -unit * point[2]);
      blob.uniforms.view.value.set(x, y, WINDOW_px, WINDOW_px).multiplyScalar(scale);
      blob.uniformsNeedUpdate = true;
      renderer.setViewport(x, y, WINDOW_px, WINDOW_px);
      renderer.setScissor(x, y, WINDOW_px, WINDOW_px);
      renderer.render(markers, camera);
      count++;
    }
    camera.clearViewOffset();
  }
  return byHand;
};

/** The centroid of each window of a screenshot in base64, in pixels of the picture from the window's corner; null for none. */
window.measure = async (base64, count) => {
  const bytes = Uint8Array.from(atob(base64), (one) => one.charCodeAt(0));
  const picture = await createImageBitmap(new Blob([bytes]), { colorSpaceConversion: "none" });
  const canvas = new OffscreenCanvas(picture.width, picture.height);
  const context = canvas.getContext("2d", { willReadFrequently: true });
  context.drawImage(picture, 0, 0);
  const side = WINDOW_px * scale;
  const across = Math.floor(picture.width / side);
  return Array.from({ length: count }, (_, index) => {
    const data = context.getImageData((index % across) * side, Math.floor(index / across) * side, side, side).data;
    let [sum, x, y] = [0, 0, 0];
    for (let i = 0; i < side * side; i++) {
      const light = data[4 * i];
      sum += light;
      x += light * ((i % side) + 0.5);
      y += light * (Math.floor(i / side) + 0.5);
    }
    return sum > 100 ? [x / sum / scale, y / sum / scale] : null;
  });
};
window.ready = true;
