// Answers for OpenCTM files (.ctm) in the viewer jsc3d: it says that they are not loaded.
// OBJ and STL files are read by jsc3d.js. To be loaded after it.
(function () {
    "use strict";
    if (typeof JSC3D === "undefined") return;

    function CtmRefusal() {}
    CtmRefusal.prototype.loadFromUrl = function (urlName) {
        if (this.onerror) this.onerror("OpenCTM files are not loaded by this viewer: \"" + urlName + "\".");
    };
    CtmRefusal.prototype.abort = function () {};

    JSC3D.LoaderSelector.registerLoader("ctm", CtmRefusal);
})();
