;;; dump.el --- Faces and comments of lines, for the tests  -*- lexical-binding: t; -*-

;; Every line of the file that the variable JOBS of the environment names is <file> <tab> <line number>.  For each of
;; them a line of JSON is written to ANSWERS: the faces at every character.

(require 'json)
(require 'mq-mode)

(let ((answers nil) (open nil))
  (dolist (job (with-temp-buffer
                 (insert-file-contents (getenv "JOBS"))
                 (split-string (buffer-string) "\n" t)))
    (pcase-let ((`(,file ,line) (split-string job "\t")))
      (unless (equal file open)
        (with-current-buffer (get-buffer-create "probe")
          (erase-buffer)
          (insert-file-contents file)
          (unless (eq major-mode 'mq-mode) (mq-mode))
          (font-lock-ensure))
        (setq open file))
      (with-current-buffer "probe"
        (goto-char (point-min))
        (forward-line (1- (string-to-number line)))
        (let (faces)
          (while (not (eolp))
            (let ((face (get-text-property (point) 'face)))
              (push (vconcat (mapcar #'symbol-name (if (listp face) face (list face)))) faces))
            (forward-char))
          (push (json-encode (vconcat (nreverse faces))) answers)))))
  (with-temp-file (getenv "ANSWERS")
    (insert (mapconcat #'identity (nreverse answers) "\n") "\n")))
;;; dump.el ends here
